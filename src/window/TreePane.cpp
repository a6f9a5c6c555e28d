#include "window/TreePane.h"

#include "window/TreeDelegate.h"

#include <QContextMenuEvent>
#include <QScrollBar>

namespace quarry {

namespace {

void collectExpanded(const QTreeView& view, const QModelIndex& parent, QStringList& uuids)
{
    const QAbstractItemModel& model = *view.model();
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        if (view.isExpanded(index))
            uuids.append(index.data(TreeModel::UuidRole).toString());
        collectExpanded(view, index, uuids);
    }
}

/// The queries, in the order in which they stand.
void collectQueries(const QAbstractItemModel& model, const QModelIndex& parent, QModelIndexList& queries)
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        if (index.data(TreeModel::KindRole).toInt() != int(QueryKind::Folder))
            queries.append(index);
        collectQueries(model, index, queries);
    }
}

} // namespace

TreePane::TreePane(TreeModel& model, const StringTable& texts, QWidget* parent) : QTreeView(parent), _model(model)
{
    setModel(&model);
    setItemDelegate(new TreeDelegate(texts, this));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setSelectionMode(ExtendedSelection);
    setDragDropMode(InternalMove);
    setDefaultDropAction(Qt::MoveAction);
    setEditTriggers(EditKeyPressed | SelectedClicked);
    setAccessibleName(texts.text(QStringLiteral("200_Tree")));
}

void TreePane::rebuild()
{
    const QStringList open = expanded();
    const QStringList selected = selectedUuids();
    const QString current = currentUuid();
    const int scroll = verticalScrollBar()->value();
    _isRebuilding = true;
    _model.reset();
    setExpanded(open);
    const QModelIndex now = _model.indexOf(current);
    selectionModel()->setCurrentIndex(now, QItemSelectionModel::NoUpdate);
    for (const QString& uuid : selected)
        selectionModel()->select(_model.indexOf(uuid), QItemSelectionModel::Select);
    verticalScrollBar()->setValue(scroll);
    _isRebuilding = false;
    if (currentUuid() != current)
        Q_EMIT currentChangedTo(currentUuid());
}

QString TreePane::currentUuid() const
{
    return currentIndex().data(TreeModel::UuidRole).toString();
}

QStringList TreePane::selectedUuids() const
{
    QStringList uuids;
    const QModelIndexList rows = selectionModel()->selectedRows();
    for (const QModelIndex& index : rows)
        uuids.append(index.data(TreeModel::UuidRole).toString());
    return uuids;
}

void TreePane::select(const QString& uuid)
{
    const QModelIndex index = _model.indexOf(uuid);
    setCurrentIndex(index);
    scrollTo(index);
}

void TreePane::selectOrFirst(const QString& uuid)
{
    const QModelIndex wanted = _model.indexOf(uuid);
    setCurrentIndex(wanted.isValid() ? wanted : _model.index(0, 0));
    scrollTo(currentIndex());
}

bool TreePane::selectNextUnread()
{
    QModelIndexList queries;
    collectQueries(_model, {}, queries);
    const qsizetype here = queries.indexOf(currentIndex());
    for (qsizetype i = 1; i <= queries.size(); ++i) {
        const QModelIndex& next = queries.at((here + i) % queries.size());
        if (next == currentIndex() || next.data(TreeModel::UnreadRole).toLongLong() == 0)
            continue;
        setCurrentIndex(next);
        scrollTo(next);
        return true;
    }
    return false;
}

QString TreePane::folderForNew() const
{
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return {};
    const bool isFolder = current.data(TreeModel::KindRole).toInt() == int(QueryKind::Folder);
    return (isFolder ? current : current.parent()).data(TreeModel::UuidRole).toString();
}

QStringList TreePane::expanded() const
{
    QStringList uuids;
    collectExpanded(*this, {}, uuids);
    return uuids;
}

void TreePane::setExpanded(const QStringList& uuids)
{
    for (const QString& uuid : uuids)
        QTreeView::setExpanded(_model.indexOf(uuid), true);
}

void TreePane::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTreeView::currentChanged(current, previous);
    if (!_isRebuilding)
        Q_EMIT currentChangedTo(current.data(TreeModel::UuidRole).toString());
}

void TreePane::contextMenuEvent(QContextMenuEvent* event)
{
    Q_EMIT contextMenuWanted(event->globalPos());
}

} // namespace quarry
