// Writing a query tree as a keyed archive.

#include "archive/KeyedArchiver.h"
#include "model/NodeKeys.h"
#include "model/QueryArchive.h"
#include "model/RecordArchive.h"
#include "model/TreeLock.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quarry {

namespace {

using Slot = KeyedArchiver::Slot;

const ArchiveClass QueryClass{{"QueryCore", "NSObject"}};

struct NodeSnapshot {
    QueryCore* node; ///< Tells nodes apart; kept alive by the lists of its holder's snapshot.
    QueryCore::Snapshot state;
};

/// Every node once, holders before what they hold.
class TreeSnapshot final {
public:
    explicit TreeSnapshot(const QueryCorePtr& root)
    {
        const TreeLock lock;
        add(root, 0);
    }
    [[nodiscard]] const std::vector<NodeSnapshot>& nodes() const { return _nodes; }
    [[nodiscard]] bool canBeReadBack() const { return !_nodes.empty() && !_isTooDeep; }

private:
    void add(const QueryCorePtr& node, int depth)
    {
        _isTooDeep = _isTooDeep || depth > MaximumTreeDepth;
        if (_isTooDeep || !node || !_seen.insert(node.get()).second)
            return;
        const std::size_t index = _nodes.size();
        _nodes.push_back({node.get(), node->snapshot()});
        const auto childs = _nodes[index].state.childs.value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& child : childs)
            add(child, depth + 1);
    }

    bool _isTooDeep = false;
    std::vector<NodeSnapshot> _nodes;
    std::unordered_set<QueryCore*> _seen;
};

qsizetype countOf(const std::optional<ResultList>& list)
{
    return list ? list->size() : 0;
}

/// Counts what the archive may come to hold, and the archives that values are copied from.
class Census final {
public:
    explicit Census(const std::vector<NodeSnapshot>& nodes)
    {
        for (const NodeSnapshot& node : nodes)
            count(node.state);
    }

    [[nodiscard]] std::uint64_t expectedObjects() const
    {
        std::uint64_t objects = KeyedArchiver::ObjectsPerArchive + _values * KeyedArchiver::ObjectsPerValue;
        for (const KeyedArchive* archive : _sources)
            objects += std::uint64_t(archive->plist().objectCount()) * 2;
        return objects;
    }

    [[nodiscard]] std::size_t records() const { return static_cast<std::size_t>(_records); }

private:
    void count(const QueryCore::Snapshot& state)
    {
        const QueryFields& fields = state.fields;
        _values += NodeKeyCount * 2 + std::uint64_t(state.childs ? state.childs->size() : 0);
        _values += fields._excludedDomains ? std::uint64_t(fields._excludedDomains->size()) : 0;
        _values += fields._combinedQueryList ? std::uint64_t(fields._combinedQueryList->size()) : 0;
        count(fields._unknownEntries);
        for (const OpaqueElement& element : fields._unknownChilds + fields._unknownCombinedQueries)
            count(*element.value);
        for (const FilterObject& filter : fields._urlFilters.value_or(QList<FilterObject>()))
            count(*filter);
        count(fields._currentResult);
        count(fields._hiddenResults);
    }

    void count(const std::optional<ResultList>& list)
    {
        _records += std::uint64_t(countOf(list));
        _values += std::uint64_t(countOf(list)) * RecordWriter::ValuesPerRecord;
        // Beyond this, references take four bytes whatever the rest comes to.
        constexpr std::uint64_t Settled = 0x10000;
        for (qsizetype i = 0; i < countOf(list) && _values < Settled; ++i) {
            const RecordExtras* extras = list->at(i).data().extras.get();
            if (extras && extras->whole)
                count(*extras->whole);
            if (extras)
                count(extras->entries);
        }
    }

    void count(const QList<OpaqueEntry>& entries)
    {
        for (const OpaqueEntry& entry : entries) {
            ++_values;
            count(*entry.value);
        }
    }

    void count(const OpaqueObject& value)
    {
        ++_values;
        _sources.insert(value.archive().get());
    }

    std::uint64_t _values = 0;
    std::uint64_t _records = 0;
    std::unordered_set<const KeyedArchive*> _sources;
};

class TreeWriter final {
public:
    TreeWriter(const std::vector<NodeSnapshot>& nodes, ByteSink& sink) : TreeWriter(nodes, Census(nodes), sink) {}

    bool write()
    {
        for (const NodeSnapshot& node : _nodes) {
            const Slot slot = _archiver.reserve();
            _slots.emplace(node.node, slot);
            if (node.state.fields._source)
                _archiver.alias(*node.state.fields._source, slot);
        }
        for (const NodeSnapshot& node : _nodes) {
            writeNode(node);
            if (_archiver.failed())
                return false;
        }
        return _archiver.finish(_slots.at(_nodes.front().node));
    }

private:
    TreeWriter(const std::vector<NodeSnapshot>& nodes, const Census& census, ByteSink& sink)
        : _nodes(nodes), _archiver(sink, census.expectedObjects(), census.records()), _records(_archiver)
    {
    }

    void writeNode(const NodeSnapshot& node)
    {
        const QueryFields& fields = node.state.fields;
        KeyedArchiver::Entries entries(_archiver);
        for (std::size_t i = 0; i < NodeKeyCount; ++i) {
            const auto key = static_cast<NodeKey>(i);
            const OpaqueObject* original = originalOf(NodeKeyNames[i], fields);
            // A value this program could not read, and nobody has set anew since.
            const std::optional<Slot> slot = original && isUnset(key, node.state)
                                                 ? std::optional(_archiver.opaque(*original))
                                                 : value(key, node.state);
            if (slot)
                entries.add(NodeKeyNames[i], *slot);
        }
        for (const OpaqueEntry& entry : fields._unknownEntries) {
            if (!isKnown(entry.key))
                entries.add(entry.key, _archiver.opaque(*entry.value));
        }
        _archiver.place(_slots.at(node.node), QueryClass, entries);
    }

    /// The slot of an entry; none when it is not written.
    std::optional<Slot> value(NodeKey key, const QueryCore::Snapshot& state)
    {
        const QueryFields& fields = state.fields;
        switch (key) {
        case NodeKey::Title:
            return text(fields._title);
        case NodeKey::Highlight:
            return text(fields._highlightString);
        case NodeKey::HighlightState:
            return _archiver.nativeBoolean(fields._highlightState);
        case NodeKey::Query:
            return text(fields._query);
        case NodeKey::LastUpdate:
            return fields._lastUpdate ? _archiver.date(fields._lastUpdate->secondsSinceReference()) : _archiver.null();
        case NodeKey::Results:
            return fields._currentResult ? _records.writeList(*fields._currentResult) : _archiver.null();
        case NodeKey::Checksum:
            return _archiver.boolean(fields._computeCheckSumOfLinks);
        case NodeKey::ExcludedDomains:
            return fields._excludedDomains ? hosts(*fields._excludedDomains) : _archiver.null();
        case NodeKey::Uuid:
            return _archiver.text(QStringView(fields._uuid));
        case NodeKey::Parent:
            return parent(state);
        case NodeKey::Childs:
            return childs(state);
        case NodeKey::IsAdvanced:
            return _archiver.boolean(fields._isAdvancedQuery);
        case NodeKey::WordRestriction:
            return fields._wordsRestriction ? _archiver.integer(*fields._wordsRestriction) : _archiver.null();
        case NodeKey::WebsiteRestriction:
            return text(fields._websiteRestriction);
        case NodeKey::UrlExpression:
            return text(fields._urlRegularExpression);
        case NodeKey::IsFolder:
            return _archiver.boolean(fields._isFolder);
        case NodeKey::KeyPath:
            return _archiver.text(QStringView(fields._keyPath));
        default:
            return optionalValue(key, fields);
        }
    }

    /// The entries that are only there when there is something to say.
    std::optional<Slot> optionalValue(NodeKey key, const QueryFields& fields)
    {
        switch (key) {
        case NodeKey::HiddenResults:
            return fields._hiddenResults ? std::optional(_records.writeList(*fields._hiddenResults)) : std::nullopt;
        case NodeKey::Filters:
            return fields._urlFilters ? std::optional(filters(*fields._urlFilters)) : std::nullopt;
        case NodeKey::CombinedQueries:
            return fields._combinedQueryList ? std::optional(combinedQueries(fields)) : std::nullopt;
        case NodeKey::IsPaused:
            return fields._queryDisabled ? std::optional(_archiver.boolean(true)) : std::nullopt;
        case NodeKey::SubscribesToBlacklist:
            return fields._isSuscribedToBlacklist ? std::optional(_archiver.boolean(true)) : std::nullopt;
        default:
            return std::nullopt;
        }
    }

    /// Whether a field is as reading leaves it when there is nothing to read.
    static bool isUnset(NodeKey key, const QueryCore::Snapshot& state)
    {
        const QueryFields& fields = state.fields;
        switch (key) {
        case NodeKey::Title:
            return !fields._title;
        case NodeKey::Highlight:
            return !fields._highlightString;
        case NodeKey::HighlightState:
            return !fields._highlightState;
        case NodeKey::Query:
            return !fields._query;
        case NodeKey::LastUpdate:
            return !fields._lastUpdate;
        case NodeKey::Results:
            return countOf(fields._currentResult) == 0;
        case NodeKey::Checksum:
            return !fields._computeCheckSumOfLinks;
        case NodeKey::ExcludedDomains:
            return !fields._excludedDomains || fields._excludedDomains->isEmpty();
        case NodeKey::IsAdvanced:
            return !fields._isAdvancedQuery;
        case NodeKey::WordRestriction:
            return fields._wordsRestriction.value_or(0) == 0;
        case NodeKey::WebsiteRestriction:
            return fields._websiteRestriction.value_or(QString()).isEmpty();
        case NodeKey::UrlExpression:
            return fields._urlRegularExpression.value_or(QString()).isEmpty();
        case NodeKey::IsFolder:
            return !fields._isFolder;
        case NodeKey::KeyPath:
            return fields._keyPath.isEmpty();
        case NodeKey::SubscribesToBlacklist:
            return fields._isSuscribedToBlacklist;
        case NodeKey::Childs:
            return !state.childs;
        case NodeKey::Uuid:
        case NodeKey::Parent:
            return false;
        case NodeKey::HiddenResults:
            return !fields._hiddenResults;
        case NodeKey::Filters:
            return !fields._urlFilters;
        case NodeKey::CombinedQueries:
            return !fields._combinedQueryList;
        case NodeKey::IsPaused:
            return !fields._queryDisabled;
        }
        return false;
    }

    static bool isKnown(const QString& name)
    {
        return std::find(NodeKeyNames.begin(), NodeKeyNames.end(), name) != NodeKeyNames.end();
    }

    static const OpaqueObject* originalOf(QStringView name, const QueryFields& fields)
    {
        for (const OpaqueEntry& entry : fields._unknownEntries) {
            if (entry.key == name)
                return entry.value.get();
        }
        return nullptr;
    }

    Slot text(const std::optional<QString>& text)
    {
        return text ? _archiver.text(QStringView(*text)) : _archiver.null();
    }

    /// A list with what was carried through back in its places.
    Slot list(std::vector<Slot> slots, const QList<OpaqueElement>& others)
    {
        for (const OpaqueElement& element : others) {
            const auto index = std::min(slots.size(), static_cast<std::size_t>(element.index));
            slots.insert(slots.begin() + static_cast<std::ptrdiff_t>(index), _archiver.opaque(*element.value));
        }
        return _archiver.list(slots);
    }

    Slot combinedQueries(const QueryFields& fields)
    {
        std::vector<Slot> slots;
        for (const QString& text : *fields._combinedQueryList)
            slots.push_back(_archiver.text(QStringView(text)));
        return list(std::move(slots), fields._unknownCombinedQueries);
    }

    Slot hosts(const QMap<QString, bool>& hosts)
    {
        std::vector<Slot> keys;
        std::vector<Slot> values;
        for (auto host = hosts.cbegin(); host != hosts.cend(); ++host) {
            keys.push_back(_archiver.text(QStringView(host.key())));
            values.push_back(_archiver.boolean(host.value()));
        }
        return _archiver.dictionary(keys, values);
    }

    Slot filters(const QList<FilterObject>& filters)
    {
        std::vector<Slot> slots;
        for (const FilterObject& filter : filters)
            slots.push_back(_archiver.opaque(*filter));
        return _archiver.list(slots);
    }

    std::optional<Slot> parent(const QueryCore::Snapshot& state)
    {
        const auto slot = _slots.find(state.parent.get());
        return slot != _slots.end() ? std::optional(slot->second) : std::nullopt;
    }

    std::optional<Slot> childs(const QueryCore::Snapshot& state)
    {
        if (!state.childs)
            return std::nullopt;
        std::vector<Slot> slots;
        for (const QueryCorePtr& child : *state.childs)
            slots.push_back(_slots.at(child.get()));
        return list(std::move(slots), state.fields._unknownChilds);
    }

    const std::vector<NodeSnapshot>& _nodes;
    KeyedArchiver _archiver;
    RecordWriter _records;
    std::unordered_map<QueryCore*, Slot> _slots;
};

} // namespace

bool saveTree(const QueryCorePtr& root, ByteSink& sink)
{
    const TreeSnapshot snapshot(root);
    return snapshot.canBeReadBack() && TreeWriter(snapshot.nodes(), sink).write();
}

} // namespace quarry
