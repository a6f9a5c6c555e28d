#pragma once

#include "archive/StringTable.h"
#include "session/ResultChart.h"

#include <QWidget>

namespace quarry {

/// New results per day as bars, the latest day last in reading direction. Each day's number shows under the pointer;
/// the arrow keys go from day to day. For screen readers all numbers stand in the description.
class DayChart final : public QWidget {
    Q_OBJECT

public:
    /// `texts` must outlive the widget.
    explicit DayChart(const StringTable& texts, QWidget* parent = nullptr);

    void show(const ResultChart& chart);
    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    /// What there is to say about the day that was reached with a key; empty for none.
    void dayReached(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] QRect plot() const;
    /// The whole height over a day.
    [[nodiscard]] QRect column(qsizetype day) const;
    [[nodiscard]] qsizetype dayAt(const QPoint& point) const;
    [[nodiscard]] QString dayText(const ResultChart::Day& day) const;
    void paintScale(QPainter& painter) const;
    void paintDay(QPainter& painter, qsizetype day) const;
    void setDay(qsizetype day);

    const StringTable& _texts;
    ResultChart _chart;
    qsizetype _day = -1; ///< Reached with the keys.
};

} // namespace quarry
