#pragma once

#include "archive/StringTable.h"
#include "session/ResultChart.h"

#include <QWidget>

namespace quarry {

/// Each service's share of all results, as one bar a service with its number. For screen readers the same stands in the
/// description.
class ShareChart final : public QWidget {
    Q_OBJECT

public:
    /// `texts` must outlive the widget.
    explicit ShareChart(const StringTable& texts, QWidget* parent = nullptr);

    void show(const ResultChart& chart);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Row {
        QString name;
        QString number; ///< "1,204 (41 %)"
        double share = 0.0;
    };

    const StringTable& _texts;
    QList<Row> _rows;
};

} // namespace quarry
