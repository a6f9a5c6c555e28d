#include "window/ResultTable.h"

#include "window/ResultDelegate.h"
#include "window/ResultModel.h"

#include <QHeaderView>
#include <QMouseEvent>

#include <utility>

namespace quarry {

ResultTable::ResultTable(QWidget* parent) : QTableView(parent)
{
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setContextMenuPolicy(Qt::CustomContextMenu);
    verticalHeader()->hide();
    // One height for all: measuring a million rows would take longer than anything else here.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(ResultDelegate::rowHeight(font()));
}

void ResultTable::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    _isSecondOnStars = index.column() == ResultModel::RatingColumn;
    if (_isSecondOnStars)
        return;
    QTableView::mouseDoubleClickEvent(event);
    if (index.isValid() && event->button() == Qt::LeftButton)
        Q_EMIT openWanted();
}

void ResultTable::mouseReleaseEvent(QMouseEvent* event)
{
    if (!std::exchange(_isSecondOnStars, false))
        QTableView::mouseReleaseEvent(event);
}

} // namespace quarry
