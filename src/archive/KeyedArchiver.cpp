#include "archive/KeyedArchiver.h"

#include "archive/OpaqueCheck.h"

#include <bit>

namespace quarry {

namespace ArchiveClasses {
const ArchiveClass MutableArray{{"NSMutableArray", "NSArray", "NSObject"}};
const ArchiveClass MutableDictionary{{"NSMutableDictionary", "NSDictionary", "NSObject"}};
const ArchiveClass Data{{"NSData", "NSObject"}};
const ArchiveClass Date{{"NSDate", "NSObject"}};
const ArchiveClass Url{{"NSURL", "NSObject"}};
} // namespace ArchiveClasses

namespace {

using Type = PlistItem::Type;

/// The same text in single bytes, when a writer spent two on each although all are ASCII.
bool isAsciiInWideForm(const StoredText& text)
{
    if (text.encoding() == StoredText::Encoding::Ascii)
        return false;
    for (std::uint32_t i = 0; i < text.length(); ++i) {
        if (text.unitAt(i) >= 0x80)
            return false;
    }
    return true;
}

} // namespace

KeyedArchiver::KeyedArchiver(ByteSink& sink, std::uint64_t expectedObjects, std::size_t expectedRecords)
    : _plist(sink, expectedObjects), _texts(expectedRecords * 4), _dates(expectedRecords)
{
    _objects.reserve(expectedRecords * 8);
    _objects.push_back(_plist.text(kept(u"$null")));
    _null = _plist.uid(0);
    _classKey = name(u"$class");
    _objectsKey = name(u"NS.objects");
    _keysKey = name(u"NS.keys");
    _timeKey = name(u"NS.time");
    _baseKey = name(u"NS.base");
    _relativeKey = name(u"NS.relative");
}

StoredText KeyedArchiver::kept(QStringView text)
{
    return _kept.emplace_back(StoredText::copyOf(text));
}

KeyedArchiver::Slot KeyedArchiver::name(QStringView text)
{
    Slot& slot = _names[text.toString()];
    if (slot == 0)
        slot = _plist.text(StoredText::copyOf(text));
    return slot;
}

KeyedArchiver::Slot KeyedArchiver::archived(PlistWriter::Object content)
{
    const auto uid = static_cast<std::uint32_t>(_objects.size());
    _objects.push_back(content);
    return _plist.uid(uid);
}

TextTable::Numbers& KeyedArchiver::numbersOf(const StoredText& text, TextKey key)
{
    if (isAsciiInWideForm(text)) {
        const StoredText narrow = kept(text.toString());
        return numbersOf(narrow, prepare(narrow));
    }
    TextTable::Numbers& numbers = _texts.numbersOf(text, key);
    if (numbers.text == 0)
        numbers.text = archived(_plist.text(text));
    return numbers;
}

KeyedArchiver::Slot KeyedArchiver::text(QStringView text)
{
    return this->text(kept(text));
}

KeyedArchiver::Slot KeyedArchiver::integer(std::int64_t value)
{
    std::uint32_t& slot = _integers.numberOf(static_cast<std::uint64_t>(value));
    if (slot == 0)
        slot = archived(_plist.integer(value));
    return slot;
}

KeyedArchiver::Slot KeyedArchiver::real(double value)
{
    std::uint32_t& slot = _reals.numberOf(std::bit_cast<std::uint64_t>(value));
    if (slot == 0)
        slot = archived(_plist.real(value));
    return slot;
}

KeyedArchiver::Slot KeyedArchiver::boolean(bool value)
{
    Slot& slot = _booleans[value ? 1 : 0];
    if (slot == 0)
        slot = archived(_plist.boolean(value));
    return slot;
}

KeyedArchiver::Slot KeyedArchiver::nativeBoolean(bool value)
{
    Slot& slot = _native[value ? 1 : 0];
    if (slot == 0)
        slot = _plist.boolean(value);
    return slot;
}

KeyedArchiver::Slot KeyedArchiver::date(double secondsSinceReference)
{
    std::uint32_t& slot = _dates.numberOf(std::bit_cast<std::uint64_t>(secondsSinceReference));
    if (slot == 0) {
        const std::array keys = {_classKey, _timeKey};
        const std::array values = {classSlot(ArchiveClasses::Date), _plist.real(secondsSinceReference)};
        slot = archived(_plist.dictionary(keys, values));
    }
    return slot;
}

void KeyedArchiver::prepareDate(double secondsSinceReference) const
{
    _dates.prefetch(std::bit_cast<std::uint64_t>(secondsSinceReference));
}

KeyedArchiver::Slot KeyedArchiver::url(const StoredText& absolute, TextKey key)
{
    TextTable::Numbers& numbers = numbersOf(absolute, key);
    if (numbers.url == 0) {
        const std::array keys = {_classKey, _baseKey, _relativeKey};
        const std::array values = {classSlot(ArchiveClasses::Url), _null, numbers.text};
        numbers.url = archived(_plist.dictionary(keys, values));
    }
    return numbers.url;
}

KeyedArchiver::Slot KeyedArchiver::data(const QByteArray& bytes)
{
    return archived(_plist.data({bytes.constData(), static_cast<std::size_t>(bytes.size())}));
}

KeyedArchiver::Slot KeyedArchiver::classSlot(const ArchiveClass& type)
{
    Slot& slot = _classes[&type];
    if (slot != 0)
        return slot;
    std::vector<Slot> chain;
    for (const char* ancestor : type.chain) {
        if (ancestor)
            chain.push_back(name(QString::fromLatin1(ancestor)));
    }
    const std::array keys = {name(u"$classname"), name(u"$classes")};
    const std::array values = {chain.front(), _plist.array(chain)};
    slot = archived(_plist.dictionary(keys, values));
    return slot;
}

PlistWriter::Object KeyedArchiver::listObject(Slot type, PlistWriter::Object elements)
{
    const std::array keys = {_classKey, _objectsKey};
    const std::array values = {type, elements};
    return _plist.dictionary(keys, values);
}

PlistWriter::Object KeyedArchiver::dictionaryObject(Slot type, PlistWriter::Object keyList,
                                                    PlistWriter::Object valueList)
{
    const std::array keys = {_classKey, _keysKey, _objectsKey};
    const std::array values = {type, keyList, valueList};
    return _plist.dictionary(keys, values);
}

KeyedArchiver::Slot KeyedArchiver::list(std::span<const Slot> elements)
{
    const PlistWriter::Object array = _plist.array(elements);
    return archived(listObject(classSlot(ArchiveClasses::MutableArray), array));
}

KeyedArchiver::Slot KeyedArchiver::dictionary(std::span<const Slot> keys, std::span<const Slot> values)
{
    return dictionaryWithKeyList(_plist.array(keys), values);
}

KeyedArchiver::Slot KeyedArchiver::dictionaryWithKeyList(Slot keyList, std::span<const Slot> values)
{
    const PlistWriter::Object array = _plist.array(values);
    return archived(dictionaryObject(classSlot(ArchiveClasses::MutableDictionary), keyList, array));
}

KeyedArchiver::Slot KeyedArchiver::reserve()
{
    const PlistWriter::Object content = _plist.reserve();
    const Slot slot = archived(content);
    _reserved.emplace(slot, content);
    return slot;
}

void KeyedArchiver::beginReserved(Slot reserved)
{
    const auto content = _reserved.find(reserved);
    Q_ASSERT(content != _reserved.end());
    _plist.begin(content->second);
    _reserved.erase(content);
}

void KeyedArchiver::place(Slot reserved, const ArchiveClass& type, const Entries& entries)
{
    std::vector<Slot> names = entries._names;
    std::vector<Slot> values = entries._values;
    names.push_back(_classKey);
    values.push_back(classSlot(type));
    beginReserved(reserved);
    _plist.dictionary(names, values);
}

void KeyedArchiver::placeList(Slot reserved, std::span<const Slot> elements)
{
    const PlistWriter::Object array = _plist.array(elements);
    const Slot type = classSlot(ArchiveClasses::MutableArray);
    beginReserved(reserved);
    listObject(type, array);
}

void KeyedArchiver::placeDictionary(Slot reserved, std::span<const Slot> keys, std::span<const Slot> values)
{
    const PlistWriter::Object keyList = _plist.array(keys);
    const PlistWriter::Object valueList = _plist.array(values);
    const Slot type = classSlot(ArchiveClasses::MutableDictionary);
    beginReserved(reserved);
    dictionaryObject(type, keyList, valueList);
}

bool KeyedArchiver::finish(Slot root)
{
    const std::array topKeys = {name(u"root")};
    const std::array topValues = {root};
    const std::array keys = {name(u"$version"), name(u"$archiver"), name(u"$top"), name(u"$objects")};
    const std::array values = {_plist.integer(100000), _plist.text(kept(u"NSKeyedArchiver")),
                               _plist.dictionary(topKeys, topValues), _plist.array(_objects)};
    // A reserved object that was never placed would leave a reference to nothing.
    return _plist.finish(_plist.dictionary(keys, values)) && !_failed && _reserved.empty();
}

// --- Values of other archives ---------------------------------------------------------------------------------------

KeyedArchiver::Source& KeyedArchiver::sourceOf(const std::shared_ptr<const KeyedArchive>& archive)
{
    for (Source& source : _sources) {
        if (source.archive == archive)
            return source;
    }
    return _sources.emplace_back(Source{archive, {}, {}});
}

void KeyedArchiver::alias(const OpaqueObject& reference, Slot slot)
{
    PlistItem item;
    const std::uint32_t object = reference.archive()->resolve(reference.plistIndex(), item);
    sourceOf(reference.archive()).objects.emplace(object, slot);
}

KeyedArchiver::Slot KeyedArchiver::opaque(const OpaqueObject& value)
{
    Source& source = sourceOf(value.archive());
    const Slot slot = copyValue(source, value.plistIndex(), 0);
    copyWaiting();
    return slot;
}

KeyedArchiver::Slot KeyedArchiver::copyReference(Source& source, std::uint32_t uid)
{
    const std::uint32_t object = source.archive->objectOf(uid);
    if (uid == 0)
        return _null;
    const auto known = source.objects.find(object);
    if (known != source.objects.end())
        return known->second;
    const PlistItem item = source.archive->plist().item(object);
    Slot slot = 0;
    if (item.isText()) {
        slot = text(item.text());
    } else {
        // Written later and not from here: references may lead round in a circle.
        slot = reserve();
        _waiting.push_back({&source, object, slot});
    }
    source.objects.emplace(object, slot);
    return slot;
}

KeyedArchiver::Slot KeyedArchiver::copyValue(Source& source, std::uint32_t object, int depth)
{
    const PlistItem item = source.archive->plist().item(object);
    if (item.type == Type::Uid)
        return copyReference(source, BinaryPlist::uid(item));
    const auto known = source.values.find(object);
    if (known != source.values.end())
        return known->second;
    const Slot slot =
        item.isContainer() ? containerObject(item.type, copyElements(source, item, depth + 1)) : copyScalar(item);
    source.values.emplace(object, slot);
    return slot;
}

std::vector<KeyedArchiver::Slot> KeyedArchiver::copyElements(Source& source, const PlistItem& container, int depth)
{
    std::vector<Slot> elements;
    if (depth > OpaqueCheck::MaximumDepth) {
        _failed = true;
        return elements;
    }
    const std::uint64_t count = container.type == Type::Dictionary ? container.count * 2 : container.count;
    elements.reserve(count);
    for (std::uint64_t i = 0; i < count && !_failed; ++i)
        elements.push_back(copyValue(source, source.archive->plist().element(container, i), depth));
    return elements;
}

PlistWriter::Object KeyedArchiver::containerObject(Type type, std::span<const Slot> elements)
{
    const std::size_t half = elements.size() / 2;
    switch (type) {
    case Type::Dictionary:
        return _plist.dictionary(elements.first(half), elements.subspan(half));
    case Type::Set:
        return _plist.set(elements);
    default:
        return _plist.array(elements);
    }
}

PlistWriter::Object KeyedArchiver::copyScalar(const PlistItem& item)
{
    const std::string_view bytes(reinterpret_cast<const char*>(item.bytes), static_cast<std::size_t>(item.count));
    const auto widthBits = static_cast<unsigned char>(std::countr_zero(static_cast<unsigned>(item.width)));
    switch (item.type) {
    case Type::Null:
        return _plist.null();
    case Type::True:
    case Type::False:
        return _plist.boolean(item.type == Type::True);
    case Type::Integer:
        return _plist.number(0x10 | widthBits, bytes);
    case Type::Real:
        return _plist.number(0x20 | widthBits, bytes);
    case Type::Date:
        return _plist.number(0x33, bytes);
    case Type::Data:
        return _plist.data(bytes);
    case Type::Ascii:
    case Type::Utf16:
        return _plist.text(item.text());
    default:
        _failed = true;
        return _plist.null();
    }
}

void KeyedArchiver::copyWaiting()
{
    while (!_waiting.empty() && !_failed) {
        const Waiting next = _waiting.back();
        _waiting.pop_back();
        const PlistItem item = next.source->archive->plist().item(next.object);
        if (item.isContainer()) {
            const std::vector<Slot> elements = copyElements(*next.source, item, 0);
            beginReserved(next.slot);
            containerObject(item.type, elements);
        } else {
            beginReserved(next.slot);
            copyScalar(item);
        }
    }
}

} // namespace quarry
