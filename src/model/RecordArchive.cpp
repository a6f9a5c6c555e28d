#include "model/RecordArchive.h"

#include "text/Url.h"

namespace quarry {

namespace {

using Type = PlistItem::Type;

RecordKey keyAt(std::size_t index)
{
    return static_cast<RecordKey>(index);
}

void setPresent(RecordData& data, RecordKey key)
{
    data.present = static_cast<RecordData::Mask>(data.present | RecordData::bit(key));
}

void storeText(RecordData& data, RecordKey key, StoredText text)
{
    data.texts[static_cast<std::size_t>(key)] = std::move(text);
    setPresent(data, key);
}

} // namespace

RecordReader::RecordReader(ArchiveReader& reader, OpaqueValues& opaque)
    : _reader(reader), _opaque(opaque), _keeper(reader.archive())
{
}

std::optional<ResultList> RecordReader::readList(const ArchivedValue& value)
{
    const auto slots = _reader.list(value);
    if (!slots || !_reader.spend(slots->count()))
        return std::nullopt;
    ResultList list;
    list.reserve(static_cast<qsizetype>(slots->count()));
    for (std::uint64_t i = 0; i < slots->count() && !_reader.failed(); ++i)
        list.append(read(slots->at(i)));
    return list;
}

ResultRecord RecordReader::read(std::uint32_t slot)
{
    auto data = std::make_unique<RecordData>();
    const ArchivedValue value = _reader.value(slot);
    const auto pairs = _reader.pairs(value);
    if (!pairs) {
        data->extras = std::make_unique<RecordExtras>();
        data->extras->whole = _opaque.take(slot);
        return ResultRecord(std::move(data));
    }
    data->keeper = _keeper;
    const std::vector<std::uint8_t>& keys = layoutOf(pairs->keys);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (keys[i] == UnknownKey)
            keepUnknown(*data, pairs->keys.at(i), pairs->values.at(i));
        else
            readValue(*data, keyAt(keys[i]), pairs->values.at(i));
    }
    return ResultRecord(std::move(data));
}

const std::vector<std::uint8_t>& RecordReader::layoutOf(const SlotList& keys)
{
    const std::string_view references = keys.bytes();
    if (!references.empty()) {
        for (std::size_t tried = 0; tried < _layouts.size(); ++tried) {
            const std::size_t index = (_lastLayout + tried) % _layouts.size();
            if (_layouts[index].references == references) {
                _lastLayout = index;
                return _layouts[index].keys;
            }
        }
    }
    _lastLayout = _nextLayout;
    _nextLayout = (_nextLayout + 1) % _layouts.size();
    Layout& layout = _layouts[_lastLayout];
    layout.references = references;
    layout.keys.clear();
    if (_reader.spendBytes(keys.count())) {
        for (std::uint64_t i = 0; i < keys.count(); ++i)
            layout.keys.push_back(keyIn(keys.at(i)));
    }
    return layout.keys;
}

std::uint8_t RecordReader::keyIn(std::uint32_t slot)
{
    const ArchivedValue name = _reader.value(slot);
    KnownKey& known = _knownKeys[name.object % _knownKeys.size()];
    if (known.object != name.object || name.isNull())
        known = {name.object, keyNamed(name)};
    return known.key;
}

std::uint8_t RecordReader::keyNamed(const ArchivedValue& name)
{
    const auto text = _reader.text(name);
    for (std::size_t i = 0; text && i < RecordKeyCount; ++i) {
        const QString& candidate = recordKeyName(keyAt(i));
        if (text->length() == static_cast<std::uint32_t>(candidate.size()) && text->toString() == candidate)
            return static_cast<std::uint8_t>(i);
    }
    return UnknownKey;
}

void RecordReader::readValue(RecordData& data, RecordKey key, std::uint32_t slot)
{
    const ArchivedValue value = _reader.value(slot);
    bool asExpected = false;
    switch (key) {
    case RecordKey::Url:
        asExpected = readUrl(data, value);
        break;
    case RecordKey::UserSaw:
    case RecordKey::Visible:
    case RecordKey::NewSincePrevious:
        asExpected = readFlag(data, key, value);
        break;
    case RecordKey::DateOfFind:
        asExpected = readDate(data, value);
        break;
    case RecordKey::Rank:
    case RecordKey::Rating:
        asExpected = readInteger(data, key, value);
        break;
    default:
        asExpected = readText(data, key, value);
    }
    if (!asExpected)
        keep(data, key, slot);
}

bool RecordReader::readText(RecordData& data, RecordKey key, const ArchivedValue& value)
{
    if (value.item.isText()) {
        storeText(data, key, value.item.text());
        return true;
    }
    auto text = _reader.text(value);
    if (!text)
        return false;
    storeText(data, key, std::move(*text));
    return true;
}

bool RecordReader::readUrl(RecordData& data, const ArchivedValue& value)
{
    if (const auto text = _reader.text(value)) {
        storeText(data, RecordKey::Url, *text);
        return false;
    }
    const auto url = _reader.url(value);
    if (!url)
        return false;
    storeText(data, RecordKey::Url, url->relative);
    if (url->base.isNull())
        return url->isPlain;
    // Kept as it was for the file; read as what it leads to.
    const auto base = _reader.url(url->base);
    if (base && _reader.spendBytes(base->relative.length() + url->relative.length())) {
        const auto full = Url::resolved(Url::fromStored(base->relative.toString()), url->relative.toString());
        if (full)
            storeText(data, RecordKey::Url, StoredText::copyOf(full->absoluteString()));
    }
    return false;
}

bool RecordReader::readFlag(RecordData& data, RecordKey key, const ArchivedValue& value)
{
    const auto number = _reader.number(value);
    if (!number)
        return false;
    if (number->real != 0.0)
        data.flags = static_cast<RecordData::Mask>(data.flags | RecordData::bit(key));
    setPresent(data, key);
    return number->kind == ArchivedNumber::Kind::Boolean;
}

bool RecordReader::readDate(RecordData& data, const ArchivedValue& value)
{
    const auto date = _reader.date(value);
    if (!date)
        return false;
    data.date = *date;
    setPresent(data, RecordKey::DateOfFind);
    return true;
}

bool RecordReader::readInteger(RecordData& data, RecordKey key, const ArchivedValue& value)
{
    const auto number = _reader.number(value);
    if (!number)
        return false;
    (key == RecordKey::Rank ? data.rank : data.rating) = number->integer;
    setPresent(data, key);
    return number->kind == ArchivedNumber::Kind::Integer;
}

void RecordReader::keep(RecordData& data, RecordKey key, std::uint32_t slot)
{
    if (!data.extras)
        data.extras = std::make_unique<RecordExtras>();
    data.kept = static_cast<RecordData::Mask>(data.kept | RecordData::bit(key));
    data.extras->entries.append({recordKeyName(key), _opaque.take(slot), nullptr});
}

void RecordReader::keepUnknown(RecordData& data, std::uint32_t keySlot, std::uint32_t slot)
{
    if (!data.extras)
        data.extras = std::make_unique<RecordExtras>();
    const auto text = _reader.text(_reader.value(keySlot));
    if (text && _reader.spendBytes(text->length()))
        data.extras->entries.append({text->toString(), _opaque.take(slot), nullptr});
    else
        data.extras->entries.append({QString(), _opaque.take(slot), _opaque.take(keySlot)});
}

/// Brings records and texts that come later closer: a save of very many waits for memory more than for anything else.
static void fetchAhead(const ResultList& records, qsizetype index)
{
    constexpr qsizetype BlocksAhead = 6;
    constexpr qsizetype TextsAhead = 3;
    if (index + BlocksAhead < records.size()) {
        const auto* block = reinterpret_cast<const char*>(&records.at(index + BlocksAhead).data());
        for (std::size_t i = 0; i < sizeof(RecordData); i += 64)
            __builtin_prefetch(block + i);
    }
    if (index + TextsAhead < records.size()) {
        for (const StoredText& text : records.at(index + TextsAhead).data().texts)
            __builtin_prefetch(text.bytes().data());
    }
}

KeyedArchiver::Slot RecordWriter::writeList(const ResultList& records)
{
    std::vector<Slot> slots;
    slots.reserve(static_cast<std::size_t>(records.size()));
    TextKeys next{};
    if (!records.isEmpty())
        next = prepare(records.front().data());
    for (qsizetype i = 0; i < records.size(); ++i) {
        const TextKeys texts = next;
        fetchAhead(records, i);
        if (i + 1 < records.size())
            next = prepare(records.at(i + 1).data());
        slots.push_back(write(records.at(i).data(), texts));
    }
    return _archiver.list(slots);
}

RecordWriter::TextKeys RecordWriter::prepare(const RecordData& data) const
{
    TextKeys texts{};
    for (std::size_t i = 0; i < RecordTextCount; ++i) {
        if (data.has(keyAt(i)))
            texts[i] = _archiver.prepare(data.texts[i]);
    }
    _archiver.prepareDate(data.date);
    return texts;
}

KeyedArchiver::Slot RecordWriter::write(const RecordData& data, const TextKeys& texts)
{
    if (data.extras)
        return writeWithExtras(data, texts);
    std::array<Slot, RecordKeyCount> values{};
    std::size_t count = 0;
    for (std::size_t i = 0; i < RecordKeyCount; ++i) {
        if (data.has(keyAt(i)))
            values[count++] = writeValue(data, keyAt(i), texts);
    }
    return _archiver.dictionaryWithKeyList(keyList(data.present), std::span(values).first(count));
}

KeyedArchiver::Slot RecordWriter::writeWithExtras(const RecordData& data, const TextKeys& texts)
{
    if (data.extras->whole)
        return _archiver.opaque(*data.extras->whole);
    std::vector<Slot> keys;
    std::vector<Slot> values;
    for (std::size_t i = 0; i < RecordKeyCount; ++i) {
        if (data.has(keyAt(i)) && !data.isKept(keyAt(i))) {
            keys.push_back(_archiver.text(QStringView(recordKeyName(keyAt(i)))));
            values.push_back(writeValue(data, keyAt(i), texts));
        }
    }
    for (const OpaqueEntry& entry : data.extras->entries) {
        keys.push_back(keySlot(entry));
        values.push_back(_archiver.opaque(*entry.value));
    }
    return _archiver.dictionary(keys, values);
}

KeyedArchiver::Slot RecordWriter::keySlot(const OpaqueEntry& entry)
{
    return entry.keyObject ? _archiver.opaque(*entry.keyObject) : _archiver.text(QStringView(entry.key));
}

KeyedArchiver::Slot RecordWriter::writeValue(const RecordData& data, RecordKey key, const TextKeys& texts)
{
    switch (key) {
    case RecordKey::Url:
        return _archiver.url(data.text(key), texts[static_cast<std::size_t>(key)]);
    case RecordKey::UserSaw:
    case RecordKey::Visible:
    case RecordKey::NewSincePrevious:
        return _archiver.boolean(data.flag(key));
    case RecordKey::DateOfFind:
        return _archiver.date(data.date);
    case RecordKey::Rank:
        return _archiver.integer(data.rank);
    case RecordKey::Rating:
        return _archiver.integer(data.rating);
    default:
        return _archiver.text(data.text(key), texts[static_cast<std::size_t>(key)]);
    }
}

KeyedArchiver::Slot RecordWriter::keyList(RecordData::Mask keys)
{
    Slot& list = _keyLists[keys];
    if (list == 0) {
        std::vector<Slot> slots;
        for (std::size_t i = 0; i < RecordKeyCount; ++i) {
            if ((keys & RecordData::bit(keyAt(i))) != 0)
                slots.push_back(_archiver.text(QStringView(recordKeyName(keyAt(i)))));
        }
        list = _archiver.keyList(slots);
    }
    return list;
}

} // namespace quarry
