#pragma once

#include "agent/StatusItem.h"

#include <QWidget>

namespace quarry {

/// The info item of the status menu as it is drawn: white text in a blue bubble, the heading centred and underlined,
/// the titles of queries slanted. It takes the width that it is given and cuts what does not fit at the tail.
class InfoMenuView final : public QWidget {
    Q_OBJECT

public:
    explicit InfoMenuView(QWidget* parent = nullptr);

    /// Takes the size of the text and a little more. Without text nothing changes.
    void setText(const InfoText& text);
    [[nodiscard]] QSize sizeHint() const override { return _frame; }
    /// The width in which nothing is cut: the frame is narrower than the text with what surrounds it, since menus
    /// are usually wider.
    [[nodiscard]] int widthForWholeText() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// A piece of one row in one look.
    struct Run {
        QString text;
        bool isHeading = false;
        bool isTitle = false;
    };
    using Row = std::vector<Run>;

    [[nodiscard]] QFont fontOf(const Run& run) const;
    [[nodiscard]] qreal widthOf(const Run& run) const;
    [[nodiscard]] qreal widthOf(const Row& row) const;
    void add(const Run& run);
    void fitFrame();
    void drawBubble(QPainter& painter) const;
    void drawRow(QPainter& painter, const Row& row, const QRectF& place) const;
    void drawRun(QPainter& painter, const Run& run, QPointF baseline) const;

    std::vector<Row> _rows;
    QSize _textSize;
    QSize _frame;
};

} // namespace quarry
