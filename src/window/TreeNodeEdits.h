#pragma once

#include "archive/StringTable.h"
#include "window/UndoableEdits.h"

#include <QStringList>

#include <optional>

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
    enum class Step { Up, Down };
    /// Whether the nodes stand in one folder and there is a place above, or below, them.
    [[nodiscard]] bool canStep(Step step, const QStringList& uuids) const;
    /// Together they come to stand one place further up, or down, in their folder.
    void step(Step step, const QStringList& uuids);
    void rename(const QString& uuid, const QString& title);

    enum class Switch { Enabled, CheckBlacklist, ComputeChecksum };
    /// Whether it is on for all of these queries, and for every query below a folder; none when there are none.
    [[nodiscard]] std::optional<bool> isOn(Switch which, const QStringList& uuids) const;
    /// For the queries themselves, and for every query below a folder.
    void set(Switch which, bool on, const QStringList& uuids);

    /// A changed definition: `how` states it, `back` what it was.
    void redefine(const QString& uuid, const std::function<void(QueryCore&)>& how,
                  const std::function<void(QueryCore&)>& back);

private:
    /// The place in their folder that a step brings them to.
    [[nodiscard]] std::optional<qsizetype> stepOf(Step step, const QList<QueryCorePtr>& nodes) const;

    const LiveTree& _tree;
    UndoableEdits& _edits;
    const StringTable& _texts;
};

} // namespace quarry
