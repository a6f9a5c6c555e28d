// Reading a query tree from a keyed archive: which node stands where.

#include "model/NodeReader.h"
#include "model/QueryArchive.h"

#include <unordered_map>
#include <vector>

namespace quarry {

namespace {

class TreeReader final {
public:
    explicit TreeReader(const std::shared_ptr<const KeyedArchive>& archive)
        : _reader(archive), _opaque(_reader), _nodeReader(_reader, _opaque)
    {
    }

    LoadedTree read()
    {
        const ArchivedValue root = _reader.root();
        if (root.type != ArchivedClass::Query)
            _reader.fail(QStringLiteral("the archive holds no query tree"));
        const QueryCorePtr tree = readNode(root, NoHolder, 0);
        if (_reader.failed())
            return {nullptr, _reader.reason()};
        connectParents(root.object);
        return {tree, {}};
    }

private:
    static constexpr std::uint32_t NoHolder = KeyedArchive::NoObject;

    struct Node {
        QueryCorePtr node;    ///< None while its children are being read.
        std::uint32_t holder; ///< The folder that was the first to list it.
        std::uint32_t parent; ///< What its parent entry leads to.
        std::uint64_t visits; ///< How many nodes a walk through this one meets, itself included.
    };

    QueryCorePtr readNode(const ArchivedValue& value, std::uint32_t holder, int depth)
    {
        if (depth > MaximumTreeDepth)
            _reader.fail(QStringLiteral("the archive's folders are nested too deeply"));
        if (_reader.failed())
            return nullptr;
        const auto [place, isNew] = _nodes.try_emplace(value.object, Node{nullptr, holder, NoHolder, 1});
        Node& entry = place->second; // Stays where it is while others come into the map.
        if (!isNew) {
            if (!entry.node)
                _reader.fail(QStringLiteral("the archive is damaged: a folder stands below itself"));
            return entry.node;
        }
        StoredNode stored = _nodeReader.read(value);
        entry.parent = stored.parent;
        QueryCorePtr node = QueryCore::fromArchive(std::move(stored.fields));
        if (stored.childs)
            node->setChildsFromArchive(readChilds(*stored.childs, value.object, depth, entry.visits));
        entry.node = node;
        return node;
    }

    QList<QueryCorePtr> readChilds(const QList<ArchivedValue>& values, std::uint32_t holder, int depth,
                                   std::uint64_t& visits)
    {
        QList<QueryCorePtr> childs;
        for (const ArchivedValue& value : values) {
            const QueryCorePtr child = readNode(value, holder, depth + 1);
            if (!child)
                break;
            childs.append(child);
            visits += _nodes.at(value.object).visits;
            // Nodes that stand in several folders at once multiply at every level; a walk must end.
            if (visits > _reader.archive()->uidCount() * 2 + 1000) {
                _reader.fail(QStringLiteral("the archive is damaged: its nodes are shared without end"));
                break;
            }
        }
        return childs;
    }

    /// A node's parent is the one its entry leads to, when that is a node of this tree, else the folder that holds it.
    void connectParents(std::uint32_t root)
    {
        _nodes.at(root).parent = NoHolder;
        const bool asStored = storedParentsLeadTo(root);
        for (auto& [object, entry] : _nodes) {
            const auto parent = _nodes.find(asStored ? parentOf(entry) : entry.holder);
            if (parent != _nodes.end())
                entry.node->setParent(parent->second.node);
        }
    }

    std::uint32_t parentOf(const Node& entry) const
    {
        return _nodes.find(entry.parent) != _nodes.end() ? entry.parent : entry.holder;
    }

    /// Whether every way from parent to parent ends at the root and not in a circle.
    bool storedParentsLeadTo(std::uint32_t root) const
    {
        std::unordered_map<std::uint32_t, bool> ends{{root, true}};
        for (const auto& [object, entry] : _nodes) {
            std::vector<std::uint32_t> path;
            for (std::uint32_t at = object; ends.find(at) == ends.end(); at = parentOf(_nodes.at(at))) {
                if (path.size() > _nodes.size())
                    return false;
                path.push_back(at);
            }
            for (const std::uint32_t passed : path)
                ends.emplace(passed, true);
        }
        return true;
    }

    ArchiveReader _reader;
    OpaqueValues _opaque;
    NodeReader _nodeReader;
    std::unordered_map<std::uint32_t, Node> _nodes; ///< By object.
};

} // namespace

LoadedTree loadTree(const QByteArray& bytes)
{
    KeyedArchive::Opened opened = KeyedArchive::open(bytes);
    if (!opened.archive)
        return {nullptr, opened.reason};
    return TreeReader(opened.archive).read();
}

} // namespace quarry
