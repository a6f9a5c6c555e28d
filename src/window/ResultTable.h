#pragma once

#include <QTableView>

namespace quarry {

/// The list of results as a table. What a click does is the same on every desktop: the first selects, or rates by a
/// star; the second of a double click opens, but on the stars, where it does nothing.
class ResultTable final : public QTableView {
    Q_OBJECT

public:
    explicit ResultTable(QWidget* parent = nullptr);

Q_SIGNALS:
    void openWanted();

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool _isSecondOnStars = false;
};

} // namespace quarry
