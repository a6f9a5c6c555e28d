#include "window/TreeNodeEdits.h"

#include <algorithm>
#include <limits>

namespace quarry {

namespace {

bool stateOf(const QueryCore& query, TreeNodeEdits::Switch which)
{
    switch (which) {
    case TreeNodeEdits::Switch::Enabled:
        return query.isEnabled();
    case TreeNodeEdits::Switch::CheckBlacklist:
        return query.isCheckingBlacklist();
    case TreeNodeEdits::Switch::ComputeChecksum:
        break;
    }
    return query.isComputingChecksum();
}

void setState(QueryCore& query, TreeNodeEdits::Switch which, bool on)
{
    switch (which) {
    case TreeNodeEdits::Switch::Enabled:
        return query.setEnabled(on);
    case TreeNodeEdits::Switch::CheckBlacklist:
        return query.setCheckBlacklist(on);
    case TreeNodeEdits::Switch::ComputeChecksum:
        return query.setComputeChecksum(on);
    }
}

/// The queries at and below the node whose switch stands the other way.
void collect(const QueryCorePtr& node, TreeNodeEdits::Switch which, bool on, QStringList& found)
{
    const bool counts = !node->isQueryFolder() || which == TreeNodeEdits::Switch::Enabled;
    if (counts && stateOf(*node, which) != on)
        found.append(node->UUID());
    const QList<QueryCorePtr> childs = node->childs().value_or(QList<QueryCorePtr>());
    for (const QueryCorePtr& child : childs)
        collect(child, which, on, found);
}

struct Placed {
    QueryCorePtr node;
    edits::Place place;
};

/// By their places: put back in that order, each finds the ones before it where they were.
QList<Placed> inOrder(const QueryCorePtr& root, const QList<QueryCorePtr>& nodes)
{
    QList<Placed> placed;
    for (const QueryCorePtr& node : nodes)
        placed.append({node, edits::placeOf(root, node)});
    std::stable_sort(placed.begin(), placed.end(),
                     [](const Placed& a, const Placed& b) { return a.place.index < b.place.index; });
    return placed;
}

} // namespace

QList<QueryCorePtr> TreeNodeEdits::topmost(const QStringList& uuids) const
{
    QList<QueryCorePtr> nodes;
    for (const QString& uuid : uuids) {
        if (const QueryCorePtr node = _tree.node(uuid); node && node != _tree.root())
            nodes.append(node);
    }
    QList<QueryCorePtr> top;
    for (const QueryCorePtr& node : nodes) {
        const bool isBelow = std::any_of(nodes.begin(), nodes.end(), [&node](const QueryCorePtr& other) {
            return other != node && other->contains(node);
        });
        if (!isBelow)
            top.append(node);
    }
    return top;
}

void TreeNodeEdits::add(const QueryCorePtr& node, const QString& folderUuid)
{
    _edits.perform(_texts.text(QStringLiteral("201_Undo add")),
                   edits::insertion(node, folderUuid, std::numeric_limits<qsizetype>::max()));
}

void TreeNodeEdits::remove(const QStringList& uuids)
{
    QList<edits::Reversible> changes;
    for (const Placed& each : inOrder(_tree.root(), topmost(uuids)))
        changes.append(edits::removal(_tree.root(), each.node));
    if (!changes.isEmpty())
        _edits.perform(_texts.text(QStringLiteral("201_Undo remove")), edits::together(changes));
}

void TreeNodeEdits::move(const QStringList& uuids, const QString& folderUuid, qsizetype index)
{
    QList<edits::Reversible> changes;
    qsizetype target = index;
    const QList<Placed> nodes = inOrder(_tree.root(), topmost(uuids));
    // Those that leave places before the target in the same folder move it forward.
    for (const Placed& each : nodes)
        target -= each.place.folderUuid == folderUuid && each.place.index < index ? 1 : 0;
    for (const auto& [node, place] : nodes)
        changes.append({edits::move(node->UUID(), folderUuid, target++),
                        edits::move(node->UUID(), place.folderUuid, place.index)});
    if (!changes.isEmpty())
        _edits.perform(_texts.text(QStringLiteral("201_Undo move")), edits::together(changes));
}

void TreeNodeEdits::rename(const QString& uuid, const QString& title)
{
    const QueryCorePtr node = _tree.node(uuid);
    if (!node)
        return;
    const std::optional<QString> former = node->snapshot().fields._title;
    const std::optional<QString> wanted = title.isEmpty() ? std::nullopt : std::optional(title);
    _edits.perform(_texts.text(QStringLiteral("201_Undo rename")),
                   {edits::rename(uuid, wanted), edits::rename(uuid, former)});
}

void TreeNodeEdits::set(Switch which, bool on, const QStringList& uuids)
{
    QStringList changing;
    for (const QueryCorePtr& node : topmost(uuids))
        collect(node, which, on, changing);
    if (!changing.isEmpty())
        _edits.perform(_texts.text(QStringLiteral("201_Undo setting")),
                       {edits::change(changing, [which, on](QueryCore& node) { setState(node, which, on); }),
                        edits::change(changing, [which, on](QueryCore& node) { setState(node, which, !on); })});
}

void TreeNodeEdits::redefine(const QString& uuid, const std::function<void(QueryCore&)>& how,
                             const std::function<void(QueryCore&)>& back)
{
    _edits.perform(_texts.text(QStringLiteral("201_Undo edit")),
                   {edits::change({uuid}, how), edits::change({uuid}, back)});
}

} // namespace quarry
