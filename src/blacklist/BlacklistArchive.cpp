#include "blacklist/BlacklistArchive.h"

#include "archive/ArchiveReader.h"
#include "archive/KeyedArchiver.h"
#include "archive/OpaqueCheck.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quarry {

namespace {

using Slot = KeyedArchiver::Slot;

const ArchiveClass FilterClass{{"BlacklistFilter", "NSObject"}};

constexpr QLatin1String RuleKey("BLRuleKey");
constexpr QLatin1String StateKey("BLStateKey");
constexpr QLatin1String CaseSensitiveKey("BLCaseSensitiveKey");
constexpr QLatin1String TypeKey("BLTypeKey");
constexpr QLatin1String ClassKey("$class");

} // namespace

/// Reads rules out of one archive.
class BlacklistReader final {
public:
    explicit BlacklistReader(const std::shared_ptr<const KeyedArchive>& archive) : _reader(archive), _check(*archive) {}

    [[nodiscard]] bool failed() const { return _reader.failed(); }
    [[nodiscard]] const QString& reason() const { return _reader.reason(); }

    StoredBlacklist readList()
    {
        StoredBlacklist stored;
        const auto slots = _reader.list(_reader.root());
        if (!slots)
            _reader.fail(QStringLiteral("the archive holds no list of rules"));
        if (_reader.failed() || !_reader.spend(slots->count()))
            return stored;
        for (std::uint64_t i = 0; i < slots->count() && !_reader.failed(); ++i) {
            const std::uint32_t slot = slots->at(i);
            if (const BlacklistFilterPtr filter = readFilter(slot))
                stored.filters.append(filter);
            else
                stored.carried.append({static_cast<qsizetype>(i), take(slot)});
        }
        return stored;
    }

    /// The only element of the list as it stands there.
    std::shared_ptr<const OpaqueObject> takeOnly()
    {
        const auto slots = _reader.list(_reader.root());
        return slots && slots->count() == 1 ? take(slots->at(0)) : nullptr;
    }

    /// What a rule says and no more; none for anything else.
    std::optional<BlacklistRule> readRule(std::uint32_t slot)
    {
        const ArchivedValue value = _reader.value(slot);
        BlacklistRule fields;
        if (value.type != ArchivedClass::BlacklistRule)
            return std::nullopt;
        for (const QLatin1String key : {RuleKey, StateKey, CaseSensitiveKey, TypeKey})
            (void)readKnown(QString(key), _reader.entry(value, key), fields);
        return failed() ? std::nullopt : std::optional(fields);
    }

    /// None for anything but a rule. A rule that stands in several places is one object.
    BlacklistFilterPtr readFilter(std::uint32_t slot)
    {
        const ArchivedValue value = _reader.value(slot);
        if (value.type != ArchivedClass::BlacklistRule)
            return nullptr;
        BlacklistFilterPtr& filter = _filters[value.object];
        if (!filter) {
            filter = std::make_shared<BlacklistFilter>();
            readEntries(value, *filter);
            filter->_source = take(slot);
        }
        return filter;
    }

private:
    void readEntries(const ArchivedValue& object, BlacklistFilter& filter)
    {
        if (!_reader.spend(object.item.count))
            return;
        for (std::uint64_t i = 0; i < object.item.count && !_reader.failed(); ++i) {
            const QString key = _reader.plist().item(_reader.plist().key(object.item, i)).text().toString();
            const std::uint32_t slot = _reader.plist().value(object.item, i);
            if (key != ClassKey && !readKnown(key, _reader.value(slot), filter._fields))
                filter._unknownEntries.append({key, take(slot), nullptr});
        }
    }

    /// False when the entry is to be carried: it is not known, or not what it should be.
    bool readKnown(const QString& key, const ArchivedValue& value, BlacklistRule& fields)
    {
        if (key == RuleKey) {
            const auto text = _reader.text(value);
            if (text && _reader.spendBytes(text->length()))
                fields.rule = text->toString();
            return text.has_value();
        }
        const bool isNumber = key == StateKey || key == CaseSensitiveKey || key == TypeKey;
        const auto number = isNumber ? _reader.number(value) : std::nullopt;
        if (!number)
            return false;
        if (key == StateKey)
            fields.state = number->real != 0.0;
        else if (key == CaseSensitiveKey)
            fields.caseSensitive = number->real != 0.0;
        else
            fields.type = number->integer;
        return true;
    }

    std::shared_ptr<const OpaqueObject> take(std::uint32_t slot)
    {
        if (!_check.isSound(slot))
            _reader.fail(QStringLiteral("the archive is damaged: an object of an unknown kind cannot be read"));
        return std::make_shared<const OpaqueObject>(_reader.archive(), slot);
    }

    ArchiveReader _reader;
    OpaqueCheck _check;
    std::unordered_map<std::uint32_t, BlacklistFilterPtr> _filters; ///< By object.
};

/// Writes a list of rules.
class BlacklistWriter final {
public:
    explicit BlacklistWriter(const StoredBlacklist& list) : _list(list), _archiver(_sink, expectedObjects(list)) {}

    QByteArray write()
    {
        const Slot root = _archiver.reserve();
        for (const BlacklistFilterPtr& filter : _list.filters) {
            const auto [place, isNew] = _slots.try_emplace(filter.get(), 0);
            if (!isNew)
                continue;
            _written.push_back(filter.get());
            place->second = _archiver.reserve();
            if (filter->_source)
                _archiver.alias(*filter->_source, place->second);
        }
        _archiver.placeList(root, elements());
        for (const BlacklistFilter* filter : _written)
            _archiver.place(_slots.at(filter), FilterClass, entries(*filter));
        return _archiver.finish(root) ? _sink.bytes : QByteArray();
    }

private:
    static std::uint64_t expectedObjects(const StoredBlacklist& list)
    {
        constexpr std::uint64_t ValuesPerRule = 9; // the rule, its entries and their names
        std::uint64_t values = std::uint64_t(list.carried.size()) + 1;
        std::unordered_set<const KeyedArchive*> sources;
        for (const CarriedElement& element : list.carried)
            sources.insert(element.value->archive().get());
        for (const BlacklistFilterPtr& filter : list.filters) {
            values += ValuesPerRule + std::uint64_t(filter->_unknownEntries.size()) * 2;
            if (filter->_source)
                sources.insert(filter->_source->archive().get());
        }
        std::uint64_t objects = KeyedArchiver::ObjectsPerArchive + values * KeyedArchiver::ObjectsPerValue;
        for (const KeyedArchive* archive : sources)
            objects += std::uint64_t(archive->plist().objectCount()) * 2;
        return objects;
    }

    /// Rules in order, what is carried at the places it had.
    std::vector<Slot> elements()
    {
        std::vector<Slot> slots;
        auto carried = _list.carried.begin();
        const auto addCarried = [&](qsizetype upTo) {
            for (; carried != _list.carried.end() && carried->index <= upTo; ++carried)
                slots.push_back(_archiver.opaque(*carried->value));
        };
        for (const BlacklistFilterPtr& filter : _list.filters) {
            addCarried(static_cast<qsizetype>(slots.size()));
            slots.push_back(_slots.at(filter.get()));
        }
        addCarried(std::numeric_limits<qsizetype>::max());
        return slots;
    }

    KeyedArchiver::Entries entries(const BlacklistFilter& filter)
    {
        const BlacklistRule& fields = filter._fields;
        KeyedArchiver::Entries entries(_archiver);
        // A value that could not be read stays, unless somebody has set another one since.
        const auto add = [&](QLatin1String key, bool isUnset, auto&& slot) {
            if (!isUnset || !carries(filter, key))
                entries.add(QString(key), slot());
        };
        if (fields.rule)
            add(RuleKey, false, [&] { return _archiver.text(QStringView(*fields.rule)); });
        add(StateKey, !fields.state, [&] { return _archiver.boolean(fields.state); });
        add(CaseSensitiveKey, !fields.caseSensitive, [&] { return _archiver.boolean(fields.caseSensitive); });
        add(TypeKey, fields.type == 0, [&] { return _archiver.integer(fields.type); });
        for (const OpaqueEntry& entry : filter._unknownEntries) {
            if (!isSet(entry.key, fields))
                entries.add(entry.key, _archiver.opaque(*entry.value));
        }
        return entries;
    }

    static bool carries(const BlacklistFilter& filter, QLatin1String key)
    {
        const auto hasKey = [key](const OpaqueEntry& entry) { return entry.key == key; };
        return std::any_of(filter._unknownEntries.begin(), filter._unknownEntries.end(), hasKey);
    }

    static bool isSet(const QString& key, const BlacklistRule& fields)
    {
        return (key == RuleKey && fields.rule) || (key == StateKey && fields.state) ||
               (key == CaseSensitiveKey && fields.caseSensitive) || (key == TypeKey && fields.type != 0);
    }

    const StoredBlacklist& _list;
    MemorySink _sink;
    KeyedArchiver _archiver;
    std::unordered_map<const BlacklistFilter*, Slot> _slots;
    std::vector<const BlacklistFilter*> _written; ///< Each rule once, in order.
};

std::optional<StoredBlacklist> unarchivedBlacklist(const QByteArray& bytes, QString* reason)
{
    KeyedArchive::Opened opened = KeyedArchive::open(bytes);
    if (opened.archive) {
        BlacklistReader reader(opened.archive);
        StoredBlacklist list = reader.readList();
        if (!reader.failed())
            return list;
        opened.reason = reader.reason();
    }
    if (reason)
        *reason = opened.reason;
    return std::nullopt;
}

QByteArray archivedBlacklist(const StoredBlacklist& list)
{
    return BlacklistWriter(list).write();
}

std::optional<BlacklistRule> blacklistRuleOf(const OpaqueObject& object)
{
    return BlacklistReader(object.archive()).readRule(object.plistIndex());
}

std::shared_ptr<const OpaqueObject> objectOfBlacklistRule(const BlacklistRule& rule)
{
    StoredBlacklist list;
    list.filters.append(BlacklistFilter::initWithRule(rule.rule, rule.type, rule.state, rule.caseSensitive));
    return BlacklistReader(KeyedArchive::open(archivedBlacklist(list)).archive).takeOnly();
}

} // namespace quarry
