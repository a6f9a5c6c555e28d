#include "window/TreeModel.h"

#include "exchange/TreeWalk.h"
#include "window/TreeWords.h"

#include <QMimeData>

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

QString mimeType()
{
    return QStringLiteral("application/x-quarryspotter-nodes");
}

QStringList uuidsIn(const QMimeData* data)
{
    return QString::fromLatin1(data->data(mimeType())).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace

/// A node at its place. The tree itself may change under it; what is asked of the node goes by its own lock.
struct TreeModel::Item {
    QueryCorePtr node;
    QString uuid; ///< Empty: everything.
    Item* parent = nullptr;
    int row = 0;
    bool isUpdating = false;
    std::vector<std::unique_ptr<Item>> childs;
};

TreeModel::TreeModel(const LiveTree& tree, const StringTable& texts, QObject* parent)
    : QAbstractItemModel(parent), _tree(tree), _texts(texts)
{
    reset();
}

TreeModel::~TreeModel() = default;

TreeModel::Item& TreeModel::append(Item& to, const QueryCorePtr& node, const QString& uuid)
{
    to.childs.push_back(std::make_unique<Item>());
    Item& added = *to.childs.back();
    added.node = node;
    added.uuid = uuid;
    added.parent = &to;
    added.row = static_cast<int>(to.childs.size()) - 1;
    return added;
}

void TreeModel::fill(Item& item)
{
    const QList<QueryCorePtr> childs = item.node->childs().value_or(QList<QueryCorePtr>());
    for (const QueryCorePtr& child : childs)
        fill(append(item, child, child->UUID()));
}

void TreeModel::reset()
{
    beginResetModel();
    _root = std::make_unique<Item>();
    _root->node = _tree.root();
    if (_root->node->numberOfChilds() > 0)
        append(*_root, _root->node, QString());
    fill(*_root);
    std::vector<Item*> changed;
    markUpdating(*_root, changed);
    endResetModel();
}

void TreeModel::refresh()
{
    refreshBelow({});
}

void TreeModel::refreshBelow(const QModelIndex& parent)
{
    const int rows = rowCount(parent);
    if (rows == 0)
        return;
    Q_EMIT dataChanged(index(0, 0, parent), index(rows - 1, 0, parent),
                       {Qt::DisplayRole, Qt::AccessibleTextRole, UnreadRole, PausedRole});
    for (int row = 0; row < rows; ++row)
        refreshBelow(index(row, 0, parent));
}

void TreeModel::setUpdating(const QSet<QString>& uuids)
{
    if (_updating == uuids)
        return;
    _updating = uuids;
    std::vector<Item*> changed;
    markUpdating(*_root, changed);
    for (Item* const each : changed) {
        const QModelIndex at = createIndex(each->row, 0, each);
        Q_EMIT dataChanged(at, at, {UpdatingRole, Qt::AccessibleTextRole});
    }
}

bool TreeModel::markUpdating(Item& item, std::vector<Item*>& changed)
{
    bool isUpdating = item.uuid.isEmpty() ? !_updating.isEmpty() : _updating.contains(item.uuid);
    for (const auto& child : item.childs)
        isUpdating = markUpdating(*child, changed) || isUpdating;
    if (std::exchange(item.isUpdating, isUpdating) != isUpdating && &item != _root.get())
        changed.push_back(&item);
    return isUpdating;
}

TreeModel::Item* TreeModel::item(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<Item*>(index.internalPointer()) : _root.get();
}

QueryCorePtr TreeModel::node(const QModelIndex& index) const
{
    return item(index)->node;
}

QModelIndex TreeModel::indexOf(const QString& uuid) const
{
    return find(*_root, uuid);
}

QModelIndex TreeModel::find(const Item& below, const QString& uuid) const
{
    for (const auto& child : below.childs) {
        if (child->uuid == uuid)
            return createIndex(child->row, 0, child.get());
        if (const QModelIndex found = find(*child, uuid); found.isValid())
            return found;
    }
    return {};
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const Item* const above = item(parent);
    if (row < 0 || column != 0 || static_cast<std::size_t>(row) >= above->childs.size())
        return {};
    return createIndex(row, 0, above->childs[static_cast<std::size_t>(row)].get());
}

QModelIndex TreeModel::parent(const QModelIndex& child) const
{
    Item* const above = child.isValid() ? item(child)->parent : nullptr;
    return above && above != _root.get() ? createIndex(above->row, 0, above) : QModelIndex();
}

int TreeModel::rowCount(const QModelIndex& parent) const
{
    return static_cast<int>(item(parent)->childs.size());
}

int TreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QString TreeModel::titleOf(const Item& item) const
{
    // A combined query that is called by its words begins with a blank.
    return item.uuid.isEmpty() ? _texts.text(QStringLiteral("220_Everything")) : item.node->title().trimmed();
}

TreeCounts::Counts TreeModel::countsOf(const Item& item) const
{
    return _tree.counts().of(item.uuid.isEmpty() ? _tree.root()->UUID() : item.uuid);
}

TreeRow TreeModel::rowOf(const Item& item) const
{
    TreeRow row;
    row.title = titleOf(item);
    row.isFolder = item.node->isQueryFolder();
    row.isPaused = !item.node->isEnabled();
    row.isUpdating = item.isUpdating;
    row.counts = countsOf(item);
    return row;
}

QVariant TreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Item& at = *item(index);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return titleOf(at);
    case Qt::AccessibleTextRole:
        return spokenRow(_texts, rowOf(at));
    case Qt::ToolTipRole: {
        TreeRow row = rowOf(at);
        row.updated = at.node->date();
        row.queries = row.isFolder ? queriesBelow(at.node).size() : 0;
        return tipOfRow(_texts, row);
    }
    case UuidRole:
        return at.uuid;
    case KindRole:
        return static_cast<int>(at.node->kind());
    case UnreadRole:
        return countsOf(at).unread;
    case UpdatingRole:
        return at.isUpdating;
    case PausedRole:
        return !at.node->isEnabled();
    default:
        return {};
    }
}

bool TreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const QString title = value.toString().trimmed();
    if (!index.isValid() || role != Qt::EditRole || title == index.data(role).toString())
        return false;
    Q_EMIT renameWanted(item(index)->uuid, title);
    return true;
}

Qt::ItemFlags TreeModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    if (item(index)->uuid.isEmpty())
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsDragEnabled;
    return item(index)->node->isQueryFolder() ? flags | Qt::ItemIsDropEnabled : flags;
}

QStringList TreeModel::mimeTypes() const
{
    return {mimeType()};
}

QMimeData* TreeModel::mimeData(const QModelIndexList& indexes) const
{
    QStringList uuids;
    for (const QModelIndex& index : indexes)
        uuids.append(item(index)->uuid); // The row for everything is not dragged; it adds nothing.
    auto* const data = new QMimeData;    // The caller's.
    data->setData(mimeType(), uuids.join(u'\n').toLatin1());
    return data;
}

bool TreeModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex& parent) const
{
    if (!data->hasFormat(mimeType()))
        return false;
    const QueryCorePtr folder = node(parent);
    for (const QString& uuid : uuidsIn(data)) {
        const QModelIndex moved = indexOf(uuid);
        if (!moved.isValid() || node(moved)->contains(folder))
            return false;
    }
    return true;
}

bool TreeModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                             const QModelIndex& parent)
{
    if (action != Qt::MoveAction || !canDropMimeData(data, action, row, column, parent))
        return false;
    // At the top, the row for everything stands before the nodes.
    const int place = (row < 0 ? rowCount(parent) : row) - (parent.isValid() ? 0 : 1);
    Q_EMIT moveWanted(uuidsIn(data), parent.isValid() ? item(parent)->uuid : QString(), std::max(0, place));
    // "Not moved": the view would take the rows out by itself; the tree says when they went.
    return false;
}

} // namespace quarry
