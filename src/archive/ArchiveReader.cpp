#include "archive/ArchiveReader.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace quarry {

namespace {

using Type = PlistItem::Type;

struct ClassName {
    const char* name;
    ArchivedClass type;
};

/// Whatever another writer calls its collections and texts, these are the names the published format has for them.
constexpr ClassName KnownClassNames[] = {
    {"NSDictionary", ArchivedClass::Dictionary},
    {"NSMutableDictionary", ArchivedClass::Dictionary},
    {"NSArray", ArchivedClass::Array},
    {"NSMutableArray", ArchivedClass::Array},
    {"NSString", ArchivedClass::Text},
    {"NSMutableString", ArchivedClass::Text},
    {"NSData", ArchivedClass::Data},
    {"NSMutableData", ArchivedClass::Data},
    {"NSDate", ArchivedClass::Date},
    {"NSNumber", ArchivedClass::Number},
    {"NSURL", ArchivedClass::Url},
    {"QueryCore", ArchivedClass::Query},
    {"BlacklistFilter", ArchivedClass::BlacklistRule},
};

constexpr const char* NameTexts[] = {"$class",  "NS.keys", "NS.objects", "NS.string",  "NS.bytes",
                                     "NS.data", "NS.time", "NS.base",    "NS.relative"};

ArchivedNumber realNumber(double value)
{
    constexpr double Limit = 9223372036854774784.0; // The greatest double below 2^63.
    const bool fits = std::abs(value) <= Limit;
    return {ArchivedNumber::Kind::Real, fits ? static_cast<std::int64_t>(value) : 0, value};
}

/// Four bytes at a time; what is left over does not matter much.
std::uint32_t hashOf(const unsigned char* bytes, std::size_t size)
{
    std::uint32_t hash = static_cast<std::uint32_t>(size);
    for (std::size_t i = 0; i + 4 <= size; i += 4) {
        std::uint32_t word = 0;
        std::memcpy(&word, bytes + i, 4);
        hash = (hash ^ word) * 0x9e3779b1U;
    }
    if (size < 4)
        hash += bytes[size - 1];
    return hash ^ hash >> 15;
}

ArchivedNumber booleanNumber(bool value)
{
    return {ArchivedNumber::Kind::Boolean, value ? 1 : 0, value ? 1.0 : 0.0};
}

} // namespace

ArchiveReader::ArchiveReader(std::shared_ptr<const KeyedArchive> archive)
    : _archive(std::move(archive)),
      // A record that is there once takes more than 16 bytes; small files may refer to theirs more often.
      _budget(static_cast<std::uint64_t>(_archive->plist().fileSize()) / 16 + 65536)
{
}

void ArchiveReader::fail(const QString& reason)
{
    if (_reason.isEmpty())
        _reason = reason;
}

bool ArchiveReader::spend(std::uint64_t elements)
{
    if (elements > _budget) {
        fail(QStringLiteral("the archive's lists hold more than its size allows"));
        return false;
    }
    _budget -= elements;
    return !failed();
}

bool ArchiveReader::spendBytes(std::uint64_t bytes)
{
    constexpr std::uint64_t Cheap = 64;
    return bytes <= Cheap || spend(bytes / 16);
}

ArchivedValue ArchiveReader::value(std::uint32_t slot)
{
    ArchivedValue value;
    value.slot = slot;
    value.object = _archive->resolve(slot, value.item);
    if (value.object == KeyedArchive::NoObject)
        fail(QStringLiteral("the archive is damaged: a reference leads nowhere"));
    else if (value.item.type == Type::Dictionary && spendBytes(value.item.count))
        value.type = classOf(value.item);
    return value;
}

ArchivedValue ArchiveReader::entry(const ArchivedValue& object, QLatin1String name)
{
    if (object.item.type != Type::Dictionary)
        return {};
    const std::uint32_t slot = plist().find(object.item, name);
    return slot == KeyedArchive::NoObject ? ArchivedValue() : value(slot);
}

const ArchiveReader::Shape* ArchiveReader::shapeOf(const PlistItem& dictionary)
{
    const std::size_t size = dictionary.count * plist().referenceWidth();
    if (dictionary.count == 0 || size > sizeof(Shape::keys))
        return nullptr;
    const std::size_t first = hashOf(dictionary.bytes, size);
    for (std::size_t i = 0; i < ShapesTried; ++i) {
        const Shape& known = _shapes[(first + i) % _shapes.size()];
        if (known.count == dictionary.count && std::memcmp(known.keys.data(), dictionary.bytes, size) == 0)
            return &known;
    }
    Shape& shape = _shapes[(first + _nextShape++ % ShapesTried) % _shapes.size()];
    shape.count = dictionary.count;
    std::memcpy(shape.keys.data(), dictionary.bytes, size);
    shape.place.fill(Absent);
    for (std::uint64_t i = 0; i < dictionary.count; ++i) {
        const PlistItem key = plist().item(plist().key(dictionary, i));
        for (std::size_t name = 0; name < NameCount; ++name) {
            if (key.isText(QLatin1String(NameTexts[name])))
                shape.place[name] = static_cast<std::uint8_t>(i);
        }
    }
    return &shape;
}

std::uint32_t ArchiveReader::slotOf(const PlistItem& dictionary, Name name)
{
    const auto index = static_cast<std::size_t>(name);
    const Shape* shape = shapeOf(dictionary);
    if (!shape)
        return plist().find(dictionary, QLatin1String(NameTexts[index]));
    const std::uint8_t place = shape->place[index];
    return place == Absent ? KeyedArchive::NoObject : plist().value(dictionary, place);
}

ArchivedClass ArchiveReader::classOf(const PlistItem& dictionary)
{
    const std::uint32_t slot = slotOf(dictionary, Name::Class);
    return slot == KeyedArchive::NoObject ? ArchivedClass::None : classNamed(slot);
}

ArchivedClass ArchiveReader::classNamed(std::uint32_t slot)
{
    for (const KnownClass& known : _classes) {
        if (known.slot == slot)
            return known.type;
    }
    PlistItem description;
    _archive->resolve(slot, description);
    ArchivedClass type = ArchivedClass::Unknown;
    if (description.type == Type::Dictionary) {
        PlistItem name;
        _archive->resolve(plist().find(description, QLatin1String("$classname")), name);
        for (const ClassName& candidate : KnownClassNames) {
            if (name.isText(QLatin1String(candidate.name)))
                type = candidate.type;
        }
    }
    _classes[_nextClass++ % _classes.size()] = {slot, type};
    return type;
}

std::optional<StoredText> ArchiveReader::text(const ArchivedValue& value)
{
    if (value.item.isText())
        return value.item.text();
    if (value.type != ArchivedClass::Text)
        return std::nullopt;
    PlistItem content;
    const std::uint32_t slot = slotOf(value.item, Name::Text);
    if (slot != KeyedArchive::NoObject) {
        _archive->resolve(slot, content);
        return content.isText() ? std::optional(content.text()) : std::nullopt;
    }
    _archive->resolve(slotOf(value.item, Name::Bytes), content);
    if (content.type != Type::Data || !spendBytes(content.count))
        return std::nullopt;
    return StoredText::copyOfUtf8(
        {reinterpret_cast<const char*>(content.bytes), static_cast<std::size_t>(content.count)});
}

std::optional<ArchivedNumber> ArchiveReader::number(const ArchivedValue& value)
{
    switch (value.item.type) {
    case Type::True:
    case Type::False:
        return booleanNumber(value.item.type == Type::True);
    case Type::Real:
        return realNumber(value.item.real());
    case Type::Integer:
        if (const auto integer = value.item.integer())
            return ArchivedNumber{ArchivedNumber::Kind::Integer, *integer, static_cast<double>(*integer)};
        return std::nullopt;
    default:
        return value.type == ArchivedClass::Number ? boxedNumber(value) : std::nullopt;
    }
}

std::optional<ArchivedNumber> ArchiveReader::boxedNumber(const ArchivedValue& value)
{
    for (const char* name : {"NS.boolval", "NS.intval", "NS.dblval"}) {
        const ArchivedValue content = entry(value, QLatin1String(name));
        if (content.item.isValid() && !content.isObject()) {
            const auto number = this->number(content);
            return number && name == std::string_view("NS.boolval") ? booleanNumber(number->integer != 0) : number;
        }
    }
    return std::nullopt;
}

std::optional<double> ArchiveReader::date(const ArchivedValue& value)
{
    if (value.item.type == Type::Date)
        return value.item.real();
    if (value.type != ArchivedClass::Date)
        return std::nullopt;
    ArchivedValue time;
    time.object = _archive->resolve(slotOf(value.item, Name::Time), time.item);
    const auto number = this->number(time);
    return number ? std::optional(number->real) : std::nullopt;
}

std::optional<std::string_view> ArchiveReader::data(const ArchivedValue& value)
{
    PlistItem content = value.item;
    if (value.type == ArchivedClass::Data)
        _archive->resolve(slotOf(value.item, Name::Data), content);
    if (content.type != Type::Data)
        return std::nullopt;
    return std::string_view(reinterpret_cast<const char*>(content.bytes), static_cast<std::size_t>(content.count));
}

std::optional<ArchivedUrl> ArchiveReader::url(const ArchivedValue& value)
{
    if (value.type != ArchivedClass::Url)
        return std::nullopt;
    const std::uint32_t relativeSlot = slotOf(value.item, Name::Relative);
    const std::uint32_t baseSlot = slotOf(value.item, Name::Base);
    if (relativeSlot == KeyedArchive::NoObject)
        return std::nullopt;
    ArchivedValue relative = this->value(relativeSlot);
    const auto text = this->text(relative);
    if (!text)
        return std::nullopt;
    ArchivedUrl url;
    url.relative = *text;
    std::uint64_t entries = 2;
    if (baseSlot != KeyedArchive::NoObject) {
        url.base = this->value(baseSlot);
        ++entries;
    }
    url.isPlain = value.item.count == entries && relative.item.isText();
    return url;
}

/// The older spelling of a list: "NS.object.0", "NS.object.1" and so on.
SlotList ArchiveReader::numbered(const PlistItem& dictionary, const QString& prefix)
{
    std::vector<std::uint32_t> slots(dictionary.count, KeyedArchive::NoObject);
    std::size_t found = 0;
    for (std::uint64_t i = 0; i < dictionary.count; ++i) {
        const PlistItem key = plist().item(plist().key(dictionary, i));
        const QString name = key.isText() ? key.text().toString() : QString();
        bool ok = false;
        const qulonglong index = name.startsWith(prefix) ? QStringView(name).mid(prefix.size()).toULongLong(&ok) : 0;
        if (ok && index < slots.size() && slots[index] == KeyedArchive::NoObject) {
            slots[index] = plist().value(dictionary, i);
            ++found;
        }
    }
    // A gap in the numbers leaves a slot that leads nowhere, which fails when it is read.
    slots.resize(found);
    return SlotList(std::move(slots));
}

std::optional<SlotList> ArchiveReader::elements(const ArchivedValue& object, Name name, const char* oldPrefix)
{
    const std::uint32_t slot = slotOf(object.item, name);
    if (slot == KeyedArchive::NoObject)
        return numbered(object.item, QLatin1String(oldPrefix));
    PlistItem array;
    _archive->resolve(slot, array);
    if (array.type != Type::Array) {
        fail(QStringLiteral("the archive is damaged: a collection has no elements"));
        return std::nullopt;
    }
    return SlotList(plist(), array, 0, array.count);
}

std::optional<SlotList> ArchiveReader::list(const ArchivedValue& value)
{
    if (value.type == ArchivedClass::Array)
        return elements(value, Name::Objects, "NS.object.");
    if (value.item.type != Type::Array)
        return std::nullopt;
    return SlotList(plist(), value.item, 0, value.item.count);
}

std::optional<SlotPairs> ArchiveReader::pairs(const ArchivedValue& value)
{
    if (value.item.type != Type::Dictionary)
        return std::nullopt;
    if (value.type == ArchivedClass::None) {
        const std::uint64_t count = value.item.count;
        return SlotPairs{SlotList(plist(), value.item, 0, count), SlotList(plist(), value.item, count, count)};
    }
    if (value.type != ArchivedClass::Dictionary)
        return std::nullopt;
    auto keys = elements(value, Name::Keys, "NS.key.");
    auto values = elements(value, Name::Objects, "NS.object.");
    if (!keys || !values)
        return std::nullopt;
    if (keys->count() != values->count()) {
        fail(QStringLiteral("the archive is damaged: a dictionary has more keys than values, or fewer"));
        return std::nullopt;
    }
    return SlotPairs{std::move(*keys), std::move(*values)};
}

} // namespace quarry
