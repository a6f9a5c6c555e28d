#include "window/TreeNodeEdits.h"

#include "exchange/TreeWalk.h"

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

/// What stands at and below these nodes and has that switch. Only the one for refreshes is a folder's own as well.
QList<QueryCorePtr> switched(const QList<QueryCorePtr>& nodes, TreeNodeEdits::Switch which)
{
    QList<QueryCorePtr> found;
    for (const QueryCorePtr& node : nodes)
        walk(node, [&](const QueryCorePtr& each, int) {
            if (!each->isQueryFolder() || which == TreeNodeEdits::Switch::Enabled)
                found.append(each);
        });
    return found;
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

void TreeNodeEdits::add(const QueryCorePtr& node, const QString& folderUuid)
{
    _edits.perform(_texts.text(QStringLiteral("201_Undo add")),
                   edits::insertion(node, folderUuid, std::numeric_limits<qsizetype>::max()));
}

void TreeNodeEdits::remove(const QStringList& uuids)
{
    QList<edits::Reversible> changes;
    for (const Placed& each : inOrder(_tree.root(), edits::topmost(_tree.root(), uuids)))
        changes.append(edits::removal(_tree.root(), each.node));
    if (!changes.isEmpty())
        _edits.perform(_texts.text(QStringLiteral("201_Undo remove")), edits::together(changes));
}

void TreeNodeEdits::move(const QStringList& uuids, const QString& folderUuid, qsizetype index)
{
    const QueryCorePtr folder = folderUuid.isEmpty() ? _tree.root() : _tree.node(folderUuid);
    if (!folder)
        return;
    QList<edits::Reversible> changes;
    qsizetype target = std::min(index, folder->numberOfChilds());
    const QList<Placed> nodes = inOrder(_tree.root(), edits::topmost(_tree.root(), uuids));
    // Those that leave places before the target in the same folder move it forward.
    for (const Placed& each : nodes)
        target -= each.place.folderUuid == folderUuid && each.place.index < index ? 1 : 0;
    for (const auto& [node, place] : nodes)
        changes.append({edits::move(node->UUID(), folderUuid, target++),
                        edits::move(node->UUID(), place.folderUuid, place.index)});
    if (!changes.isEmpty())
        _edits.perform(_texts.text(QStringLiteral("201_Undo move")), edits::together(changes));
}

std::optional<qsizetype> TreeNodeEdits::stepOf(Step step, const QList<QueryCorePtr>& nodes) const
{
    const QList<Placed> placed = inOrder(_tree.root(), nodes);
    if (placed.isEmpty())
        return std::nullopt;
    const edits::Place first = placed.constFirst().place;
    const bool isOneFolder = std::all_of(placed.begin(), placed.end(), [&first](const Placed& each) {
        return each.place.folderUuid == first.folderUuid;
    });
    const QueryCorePtr folder = first.folderUuid.isEmpty() ? _tree.root() : _tree.node(first.folderUuid);
    // Down is behind the one that follows the last.
    const qsizetype target = step == Step::Up ? first.index - 1 : placed.constLast().place.index + 2;
    const bool isThere = isOneFolder && target >= 0 && target <= folder->numberOfChilds();
    return isThere ? std::optional(target) : std::nullopt;
}

bool TreeNodeEdits::canStep(Step step, const QStringList& uuids) const
{
    return stepOf(step, edits::topmost(_tree.root(), uuids)).has_value();
}

void TreeNodeEdits::step(Step step, const QStringList& uuids)
{
    const QList<QueryCorePtr> nodes = edits::topmost(_tree.root(), uuids);
    if (const std::optional<qsizetype> target = stepOf(step, nodes))
        move(uuids, edits::placeOf(_tree.root(), nodes.constFirst()).folderUuid, *target);
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

std::optional<bool> TreeNodeEdits::isOn(Switch which, const QStringList& uuids) const
{
    const QList<QueryCorePtr> nodes = switched(edits::topmost(_tree.root(), uuids), which);
    if (nodes.isEmpty())
        return std::nullopt;
    return std::all_of(nodes.begin(), nodes.end(), [which](const QueryCorePtr& node) { return stateOf(*node, which); });
}

void TreeNodeEdits::set(Switch which, bool on, const QStringList& uuids)
{
    QStringList changing;
    const QList<QueryCorePtr> nodes = switched(edits::topmost(_tree.root(), uuids), which);
    for (const QueryCorePtr& node : nodes) {
        if (stateOf(*node, which) != on)
            changing.append(node->UUID());
    }
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
