#include "window/TreeModel.h"

#include <QMimeData>

#include <vector>

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
    QString uuid;
    Item* parent = nullptr;
    int row = 0;
    std::vector<std::unique_ptr<Item>> childs;
};

TreeModel::TreeModel(const LiveTree& tree, QObject* parent) : QAbstractItemModel(parent), _tree(tree)
{
    reset();
}

TreeModel::~TreeModel() = default;

void TreeModel::fill(Item& item, const QueryCorePtr& node)
{
    item.node = node;
    item.uuid = node->UUID();
    const QList<QueryCorePtr> childs = node->childs().value_or(QList<QueryCorePtr>());
    for (const QueryCorePtr& child : childs) {
        auto below = std::make_unique<Item>();
        below->parent = &item;
        below->row = static_cast<int>(item.childs.size());
        fill(*below, child);
        item.childs.push_back(std::move(below));
    }
}

void TreeModel::reset()
{
    beginResetModel();
    _root = std::make_unique<Item>();
    fill(*_root, _tree.root());
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
    Q_EMIT dataChanged(index(0, 0, parent), index(rows - 1, 0, parent));
    for (int row = 0; row < rows; ++row)
        refreshBelow(index(row, 0, parent));
}

void TreeModel::setUpdating(const QSet<QString>& uuids)
{
    if (_updating == uuids)
        return;
    _updating = uuids;
    refresh();
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
    return uuid.isEmpty() ? QModelIndex() : find(*_root, uuid);
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

QVariant TreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Item& at = *item(index);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return at.node->title();
    case UuidRole:
        return at.uuid;
    case KindRole:
        return static_cast<int>(at.node->kind());
    case UnreadRole:
        return _tree.counts().of(at.uuid).unread;
    case FreshRole:
        return _tree.counts().of(at.uuid).fresh;
    case UpdatingRole:
        return _updating.contains(at.uuid);
    case PausedRole:
        return !at.node->isEnabled();
    default:
        return {};
    }
}

bool TreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const QString title = value.toString().trimmed();
    if (!index.isValid() || role != Qt::EditRole || title == item(index)->node->title())
        return false;
    Q_EMIT renameWanted(item(index)->uuid, title);
    return true;
}

Qt::ItemFlags TreeModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
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
        uuids.append(item(index)->uuid);
    auto* const data = new QMimeData; // The caller's.
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
    Q_EMIT moveWanted(uuidsIn(data), parent.isValid() ? item(parent)->uuid : QString(),
                      row < 0 ? rowCount(parent) : row);
    // "Not moved": the view would take the rows out by itself; the tree says when they went.
    return false;
}

} // namespace quarry
