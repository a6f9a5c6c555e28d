#pragma once

#include "archive/StringTable.h"
#include "window/UndoableEdits.h"

#include <QStringList>

namespace quarry {

/// What the user does to queries and folders, by their UUIDs.
class TreeNodeEdits final {
public:
    /// All must outlive the object.
    TreeNodeEdits(const LiveTree& tree, UndoableEdits& edits, const StringTable& texts)
        : _tree(tree), _edits(edits), _texts(texts)
    {
    }

    /// A node that is in no tree yet; an empty folder UUID is the top.
    void add(const QueryCorePtr& node, const QString& folderUuid);
    void remove(const QStringList& uuids);
    /// `index` counts the folder's children as they are now.
    void move(const QStringList& uuids, const QString& folderUuid, qsizetype index);
    void rename(const QString& uuid, const QString& title);

    enum class Switch { Enabled, CheckBlacklist, ComputeChecksum };
    /// For the queries themselves, and for every query below a folder.
    void set(Switch which, bool on, const QStringList& uuids);

    /// A changed definition: `how` states it, `back` what it was.
    void redefine(const QString& uuid, const std::function<void(QueryCore&)>& how,
                  const std::function<void(QueryCore&)>& back);

private:
    /// Without those that stand below another one of them.
    [[nodiscard]] QList<QueryCorePtr> topmost(const QStringList& uuids) const;

    const LiveTree& _tree;
    UndoableEdits& _edits;
    const StringTable& _texts;
};

} // namespace quarry
