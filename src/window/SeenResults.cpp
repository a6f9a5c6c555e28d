#include "window/SeenResults.h"

#include "model/ResultComparator.h"

#include <QApplication>

#include <utility>

namespace quarry {

namespace {

/// Long enough to go past a result by the arrow keys.
constexpr int MomentMilliseconds = 1000;

} // namespace

SeenResults::SeenResults(const ResultsPane& pane, ResultEdits& edits, QObject* parent)
    : QObject(parent), _pane(pane), _edits(edits), _moment(this)
{
    _moment.setSingleShot(true);
    _moment.setInterval(MomentMilliseconds);
    connect(&_moment, &QTimer::timeout, this, [this] { stayedLongEnough(); });
}

void SeenResults::follow()
{
    const QModelIndexList rows = _pane.selectedRows();
    const bool isOne = rows.size() == 1 && !_pane.showsHidden();
    const ResultModel& model = _pane.model();
    const QString query = isOne ? model.listing().queryUuid(model.row(rows.constFirst())) : QString();
    const QString key = isOne ? ResultKeys::keyOf(model.row(rows.constFirst()).record) : QString();
    if (query == _query && key == _key)
        return;
    // A click that selects another may be the first of two: the list holds still until the second one came.
    if (std::exchange(_isSeen, false))
        QTimer::singleShot(QApplication::doubleClickInterval(), this,
                           [this, left = _result] { _edits.markSeen(left); });
    _moment.stop();
    _query = query;
    _key = key;
    _result = model.selection(isOne ? rows : QModelIndexList());
    if (isOne && rows.constFirst().data(ResultModel::UnreadRole).toBool())
        _moment.start();
}

void SeenResults::leaveAlone()
{
    _moment.stop();
    _isSeen = false;
}

void SeenResults::stayedLongEnough()
{
    if (_pane.order() == UnreadFirst)
        _isSeen = true;
    else
        _edits.markSeen(_result);
}

} // namespace quarry
