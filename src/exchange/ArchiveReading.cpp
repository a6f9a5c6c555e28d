#include "exchange/ArchiveReading.h"

#include "model/QueryArchive.h"

#include <unordered_set>

namespace quarry {

namespace {

/// Takes a tree apart into values.
class Taker final {
public:
    ImportedNode take(const QueryCorePtr& node)
    {
        if (!_seen.insert(node.get()).second)
            _fault = QStringLiteral("the archive is damaged: a query stands in two folders");
        QueryCore::Snapshot state = node->snapshot();
        ImportedNode taken{std::move(state.fields), std::nullopt};
        if (!state.childs)
            return taken;
        taken.childs.emplace();
        for (const QueryCorePtr& child : *state.childs) {
            if (!_fault.isEmpty())
                break;
            taken.childs->push_back(take(child));
        }
        return taken;
    }
    [[nodiscard]] const QString& fault() const { return _fault; }

private:
    std::unordered_set<const QueryCore*> _seen;
    QString _fault;
};

bool isUnnamedRoot(const QueryFields& fields)
{
    return fields._isFolder && fields._keyPath.isEmpty() && !fields._title &&
           fields._query.value_or(QString()).isEmpty();
}

} // namespace

ImportedForest readArchivedNodes(const QByteArray& bytes, const QString& nameOfUnnamed)
{
    const LoadedTree loaded = loadTree(bytes);
    if (!loaded.root)
        return {{}, loaded.reason};
    Taker taker;
    ImportedNode root = taker.take(loaded.root);
    if (!taker.fault().isEmpty())
        return {{}, taker.fault()};
    ImportedForest forest;
    if (!isUnnamedRoot(root.fields)) {
        forest.nodes.push_back(std::move(root));
    } else if (root.fields._unknownEntries.isEmpty() && root.fields._unknownChilds.isEmpty()) {
        forest.nodes = std::move(root.childs).value_or(std::vector<ImportedNode>());
    } else {
        root.fields._query = nameOfUnnamed;
        forest.nodes.push_back(std::move(root));
    }
    return forest;
}

} // namespace quarry
