#include "model/NodeReader.h"

#include "model/ResultComparator.h"
#include "text/Uuid.h"

namespace quarry {

static const QHash<QString, NodeKey>& nodeKeys()
{
    static const QHash<QString, NodeKey> keys = [] {
        QHash<QString, NodeKey> map;
        for (std::size_t i = 0; i < NodeKeyCount; ++i)
            map.insert(NodeKeyNames[i].toString(), static_cast<NodeKey>(i));
        return map;
    }();
    return keys;
}

StoredNode NodeReader::read(const ArchivedValue& value)
{
    _fields = QueryFields();
    sortEntries(value);
    readFields();
    StoredNode node;
    const ArchivedValue parent = entry(NodeKey::Parent);
    if (parent.type == ArchivedClass::Query)
        node.parent = parent.object;
    node.childs = childs();
    _fields._source = std::make_shared<const OpaqueObject>(_reader.archive(), value.slot);
    node.fields = std::move(_fields);
    return node;
}

/// Puts the known entries in their places, and takes the others along.
void NodeReader::sortEntries(const ArchivedValue& value)
{
    _slots.fill(KeyedArchive::NoObject);
    const BinaryPlist& plist = _reader.plist();
    for (std::uint64_t i = 0; i < value.item.count && !_reader.failed(); ++i) {
        const PlistItem key = plist.item(plist.key(value.item, i));
        if (!key.isText() || !_reader.spendBytes(key.count))
            return _reader.fail(QStringLiteral("the archive is damaged: an entry has no name"));
        const std::uint32_t slot = plist.value(value.item, i);
        const QString name = key.text().toString();
        const auto known = nodeKeys().constFind(name);
        if (known != nodeKeys().constEnd())
            _slots[static_cast<std::size_t>(*known)] = slot;
        else if (name != QLatin1String("$class"))
            _fields._unknownEntries.append({name, _opaque.take(slot), nullptr});
    }
}

void NodeReader::readFields()
{
    _fields._query = text(NodeKey::Query);
    _fields._lastUpdate = date(NodeKey::LastUpdate);
    _fields._currentResult = results(NodeKey::Results).value_or(ResultList());
    sortResults(*_fields._currentResult, ByRank);
    _fields._hiddenResults = results(NodeKey::HiddenResults);
    _fields._urlFilters = filters();
    _fields._combinedQueryList = combinedQueries();
    _fields._title = text(NodeKey::Title);
    _fields._highlightString = text(NodeKey::Highlight);
    _fields._highlightState = boolean(NodeKey::HighlightState);
    _fields._isAdvancedQuery = boolean(NodeKey::IsAdvanced);
    _fields._wordsRestriction = integer(NodeKey::WordRestriction).value_or(0);
    _fields._websiteRestriction = text(NodeKey::WebsiteRestriction).value_or(QStringLiteral(""));
    _fields._urlRegularExpression = text(NodeKey::UrlExpression).value_or(QStringLiteral(""));
    _fields._keyPath = text(NodeKey::KeyPath).value_or(QStringLiteral(""));
    _fields._excludedDomains = excludedDomains();
    _fields._computeCheckSumOfLinks = boolean(NodeKey::Checksum);
    const std::optional<QString> uuid = text(NodeKey::Uuid);
    _fields._uuid = uuid ? *uuid : UUIDString();
    _fields._isFolder = boolean(NodeKey::IsFolder);
    _fields._queryDisabled = boolean(NodeKey::IsPaused);
    _fields._isSuscribedToBlacklist = boolean(NodeKey::SubscribesToBlacklist, true);
}

ArchivedValue NodeReader::entry(NodeKey key)
{
    const std::uint32_t slot = _slots[static_cast<std::size_t>(key)];
    return slot == KeyedArchive::NoObject ? ArchivedValue() : _reader.value(slot);
}

void NodeReader::keep(NodeKey key)
{
    if (entry(key).isNull())
        return;
    const auto index = static_cast<std::size_t>(key);
    _fields._unknownEntries.append({NodeKeyNames[index].toString(), _opaque.take(_slots[index]), nullptr});
}

std::optional<QString> NodeReader::text(NodeKey key)
{
    std::optional<QString> text = sharedText(entry(key));
    if (!text)
        keep(key);
    return text;
}

std::optional<qint64> NodeReader::integer(NodeKey key)
{
    if (const auto number = _reader.number(entry(key)))
        return number->integer;
    keep(key);
    return std::nullopt;
}

bool NodeReader::boolean(NodeKey key, bool otherwise)
{
    const std::optional<qint64> number = integer(key);
    return number ? *number != 0 : otherwise;
}

std::optional<Date> NodeReader::date(NodeKey key)
{
    if (const auto date = _reader.date(entry(key)))
        return Date(*date);
    keep(key);
    return std::nullopt;
}

std::optional<SlotList> NodeReader::list(NodeKey key)
{
    auto list = _reader.list(entry(key));
    // Many nodes may list the same texts or rules, and one more place in a list takes four bytes and less.
    if (list && _reader.spend(list->count() / 4))
        return list;
    keep(key);
    return std::nullopt;
}

std::optional<ResultList> NodeReader::results(NodeKey key)
{
    auto list = _records.readList(entry(key));
    if (!list)
        keep(key);
    return list;
}

std::optional<QList<FilterObject>> NodeReader::filters()
{
    const auto slots = list(NodeKey::Filters);
    if (!slots)
        return std::nullopt;
    QList<FilterObject> filters;
    for (std::uint64_t i = 0; i < slots->count() && !_reader.failed(); ++i)
        filters.append(_opaque.take(slots->at(i)));
    return filters;
}

std::optional<QStringList> NodeReader::combinedQueries()
{
    const auto slots = list(NodeKey::CombinedQueries);
    if (!slots)
        return std::nullopt;
    QStringList texts;
    for (std::uint64_t i = 0; i < slots->count() && !_reader.failed(); ++i) {
        const std::uint32_t slot = slots->at(i);
        if (const std::optional<QString> text = sharedText(_reader.value(slot)))
            texts.append(*text);
        else
            _fields._unknownCombinedQueries.append({static_cast<qsizetype>(i), _opaque.take(slot)});
    }
    return texts;
}

QMap<QString, bool> NodeReader::excludedDomains()
{
    QMap<QString, bool> hosts;
    const auto pairs = _reader.pairs(entry(NodeKey::ExcludedDomains));
    // Many queries exclude the same hosts, and a host that is there already adds four bytes and less.
    if (!pairs || !_reader.spend(pairs->keys.count() / 4)) {
        keep(NodeKey::ExcludedDomains);
        return hosts;
    }
    for (std::uint64_t i = 0; i < pairs->keys.count() && !_reader.failed(); ++i) {
        const std::optional<QString> host = sharedText(_reader.value(pairs->keys.at(i)));
        const auto number = _reader.number(_reader.value(pairs->values.at(i)));
        if (host)
            hosts.insert(*host, !number || number->real != 0.0);
    }
    return hosts;
}

std::optional<QString> NodeReader::sharedText(const ArchivedValue& value)
{
    if (value.isNull())
        return std::nullopt;
    const auto known = _sharedTexts.constFind(value.object);
    if (known != _sharedTexts.constEnd())
        return *known;
    const auto text = _reader.text(value);
    if (!text || !_reader.spendBytes(text->length()))
        return std::nullopt;
    return *_sharedTexts.insert(value.object, text->toString());
}

std::optional<QList<ArchivedValue>> NodeReader::childs()
{
    const auto slots = list(NodeKey::Childs);
    if (!slots)
        return std::nullopt;
    QList<ArchivedValue> childs;
    for (std::uint64_t i = 0; i < slots->count() && !_reader.failed(); ++i) {
        const ArchivedValue child = _reader.value(slots->at(i));
        if (child.type == ArchivedClass::Query)
            childs.append(child);
        else
            _fields._unknownChilds.append({static_cast<qsizetype>(i), _opaque.take(child.slot)});
    }
    return childs;
}

} // namespace quarry
