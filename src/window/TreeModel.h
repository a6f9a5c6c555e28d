#pragma once

#include "archive/StringTable.h"
#include "session/LiveTree.h"

#include <QAbstractItemModel>
#include <QSet>
#include <QString>

#include <memory>
#include <vector>

namespace quarry {

struct TreeRow;

/// The query tree as a view wants it: a snapshot of which nodes stand where, what they are called and what their badges
/// say. Above them, unless the tree is empty, a row stands for everything: it has no UUID. Rows are found again by the
/// UUIDs of their nodes; after reset() every index is a new one.
class TreeModel final : public QAbstractItemModel {
    Q_OBJECT

public:
    enum Role {
        UuidRole = Qt::UserRole,
        KindRole,     ///< int of QueryKind
        UnreadRole,   ///< qint64
        UpdatingRole, ///< bool: the query, or one below the folder
        PausedRole,   ///< bool
    };

    /// Both must outlive the model.
    TreeModel(const LiveTree& tree, const StringTable& texts, QObject* parent = nullptr);
    ~TreeModel() override;

    /// The tree is another one, or nodes came, went or moved.
    void reset();
    /// Titles, badges or states of nodes may have changed.
    void refresh();
    void setUpdating(const QSet<QString>& uuids);

    [[nodiscard]] QueryCorePtr node(const QModelIndex& index) const;
    /// An empty UUID names the row for everything.
    [[nodiscard]] QModelIndex indexOf(const QString& uuid) const;

    // What the user does to the tree in the view; the model itself changes nothing.
Q_SIGNALS:
    void renameWanted(const QString& uuid, const QString& title);
    /// `index` counts the folder's children as they are now; an empty folder UUID is the top.
    void moveWanted(const QStringList& uuids, const QString& folderUuid, qsizetype index);

public:
    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    [[nodiscard]] QStringList mimeTypes() const override;
    [[nodiscard]] QMimeData* mimeData(const QModelIndexList& indexes) const override;
    [[nodiscard]] bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                       const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

private:
    struct Item;

    [[nodiscard]] Item* item(const QModelIndex& index) const;
    static Item& append(Item& to, const QueryCorePtr& node, const QString& uuid);
    static void fill(Item& item);
    [[nodiscard]] QModelIndex find(const Item& below, const QString& uuid) const;
    void refreshBelow(const QModelIndex& parent);
    /// Notes whether the node or one below it is updated. Those of which that changed are added to the list.
    bool markUpdating(Item& item, std::vector<Item*>& changed);
    [[nodiscard]] QString titleOf(const Item& item) const;
    [[nodiscard]] TreeCounts::Counts countsOf(const Item& item) const;
    [[nodiscard]] TreeRow rowOf(const Item& item) const;

    const LiveTree& _tree;
    const StringTable& _texts;
    std::unique_ptr<Item> _root;
    QSet<QString> _updating;
};

} // namespace quarry
