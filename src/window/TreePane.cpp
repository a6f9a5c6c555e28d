#include "window/TreePane.h"

#include "window/TreeDelegate.h"

#include <QContextMenuEvent>
#include <QScrollBar>

#include <utility>

namespace quarry {

namespace {

/// Every row, in the order in which they stand.
void collectRows(const QAbstractItemModel& model, const QModelIndex& parent, QModelIndexList& rows)
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        rows.append(index);
        collectRows(model, index, rows);
    }
}

QString uuidAt(const QModelIndex& index)
{
    return index.data(TreeModel::UuidRole).toString();
}

bool isFolder(const QModelIndex& index)
{
    return index.data(TreeModel::KindRole).toInt() == int(QueryKind::Folder);
}

} // namespace

TreePane::TreePane(TreeModel& model, const StringTable& texts, QWidget* parent) : QTreeView(parent), _model(model)
{
    setModel(&model);
    setItemDelegate(new TreeDelegate(this));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setSelectionMode(ExtendedSelection);
    setDragDropMode(InternalMove);
    setDefaultDropAction(Qt::MoveAction);
    setEditTriggers(EditKeyPressed | SelectedClicked);
    setAccessibleName(texts.text(QStringLiteral("200_Tree")));
}

QStringList TreePane::near(const QModelIndex& index)
{
    QStringList uuids;
    for (QModelIndex at = index; at.isValid(); at = at.parent()) {
        for (QModelIndex next = at; next.isValid(); next = next.siblingAtRow(next.row() + 1))
            uuids.append(uuidAt(next));
        for (int row = at.row() - 1; row >= 0; --row)
            uuids.append(uuidAt(at.siblingAtRow(row)));
    }
    return uuids;
}

void TreePane::rebuild()
{
    // The editor would go with its row.
    _isRebuildDue = state() == EditingState;
    if (_isRebuildDue)
        return;
    const QStringList open = expanded();
    const QStringList around = near(currentIndex());
    QStringList selected;
    const QModelIndexList rows = selectionModel()->selectedRows();
    for (const QModelIndex& index : rows)
        selected.append(uuidAt(index));
    const int scroll = verticalScrollBar()->value();
    _isRebuilding = true;
    _model.reset();
    setExpanded(open);
    QItemSelection kept;
    for (const QString& uuid : std::as_const(selected)) {
        if (const QModelIndex index = _model.indexOf(uuid); index.isValid())
            kept.select(index, index);
    }
    QModelIndex current;
    for (const QString& uuid : around) {
        current = _model.indexOf(uuid);
        if (current.isValid())
            break;
    }
    if (kept.isEmpty()) {
        selectOnly(current.isValid() ? current : _model.index(0, 0));
    } else {
        const bool isCurrentThere = around.isEmpty() || uuidAt(current) == around.constFirst();
        selectOnly(isCurrentThere ? current : QModelIndex(kept.constFirst().topLeft()));
        selectionModel()->select(kept, QItemSelectionModel::ClearAndSelect);
    }
    verticalScrollBar()->setValue(scroll);
    _isRebuilding = false;
    tellCurrent();
}

void TreePane::selectOnly(const QModelIndex& index)
{
    selectionModel()->select(index, QItemSelectionModel::ClearAndSelect);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
}

QString TreePane::currentUuid() const
{
    const QModelIndexList rows = selectionModel()->selectedRows();
    return uuidAt(rows.size() == 1 ? rows.constFirst() : currentIndex());
}

QStringList TreePane::selectedUuids() const
{
    QStringList uuids;
    const QModelIndexList rows = selectionModel()->selectedRows();
    for (const QModelIndex& index : rows)
        uuids.append(uuidAt(index));
    uuids.removeAll(QString());
    return uuids;
}

bool TreePane::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    const bool isBegun = QTreeView::edit(index, trigger, event);
    if (isBegun)
        _edited = index;
    return isBegun;
}

void TreePane::finishEditing()
{
    QWidget* const editor = state() == EditingState ? indexWidget(_edited) : nullptr;
    if (!editor)
        return;
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void TreePane::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
    QTreeView::closeEditor(editor, hint);
    if (_isRebuildDue)
        rebuild();
}

void TreePane::select(const QString& uuid)
{
    finishEditing(); // The node may be one that is not shown before that.
    const QModelIndex index = _model.indexOf(uuid);
    if (!index.isValid())
        return;
    selectOnly(index);
    scrollTo(index);
}

void TreePane::selectOrFirst(const std::optional<QString>& uuid)
{
    const bool isThere = uuid && _model.indexOf(*uuid).isValid();
    select(isThere ? *uuid : uuidAt(_model.index(1, 0))); // Below the row for everything.
}

bool TreePane::selectNextUnread()
{
    QModelIndexList rows;
    collectRows(_model, {}, rows);
    const QModelIndex current = _model.indexOf(currentUuid());
    const qsizetype here = rows.indexOf(current);
    for (qsizetype i = 1; i <= rows.size(); ++i) {
        const QModelIndex& next = rows.at((here + i) % rows.size());
        if (next == current || isFolder(next) || next.data(TreeModel::UnreadRole).toLongLong() == 0)
            continue;
        select(uuidAt(next));
        return true;
    }
    return false;
}

void TreePane::rename(const QString& uuid)
{
    edit(_model.indexOf(uuid));
}

QString TreePane::folderForNew() const
{
    const QModelIndex current = _model.indexOf(currentUuid());
    return uuidAt(isFolder(current) ? current : current.parent());
}

QStringList TreePane::expanded() const
{
    QModelIndexList rows;
    collectRows(_model, {}, rows);
    QStringList uuids;
    for (const QModelIndex& index : std::as_const(rows)) {
        if (isExpanded(index))
            uuids.append(uuidAt(index));
    }
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
    tellCurrent();
}

void TreePane::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    tellCurrent();
}

void TreePane::tellCurrent()
{
    const QString current = currentUuid();
    if (_isRebuilding || current == _told)
        return;
    _told = current;
    Q_EMIT currentChangedTo(current);
}

QItemSelectionModel::SelectionFlags TreePane::selectionCommand(const QModelIndex& index, const QEvent* event) const
{
    const QItemSelectionModel::SelectionFlags flags = QTreeView::selectionCommand(index, event);
    const bool isLast = selectionModel()->selectedRows() == QModelIndexList{index};
    const bool isTakenOut = flags.testAnyFlags(QItemSelectionModel::Toggle | QItemSelectionModel::Deselect);
    return !index.isValid() || (isLast && isTakenOut) ? QItemSelectionModel::NoUpdate : flags;
}

void TreePane::contextMenuEvent(QContextMenuEvent* event)
{
    Q_EMIT contextMenuWanted(event->globalPos());
}

} // namespace quarry
