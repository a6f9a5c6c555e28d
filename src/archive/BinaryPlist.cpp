#include "archive/BinaryPlist.h"

#include <QtEndian>

#include <bit>

namespace quarry {

namespace {

constexpr std::uint64_t TrailerSize = 32;
/// Longer texts do not fit a QString on every machine, and no page is that long.
constexpr std::uint64_t MaximumTextLength = 0x3fffffff;

using Type = PlistItem::Type;

Type typeOfSimple(unsigned marker)
{
    switch (marker) {
    case 0x00:
        return Type::Null;
    case 0x08:
        return Type::False;
    case 0x09:
        return Type::True;
    default:
        return Type::Invalid;
    }
}

Type typeOfCounted(unsigned highNibble)
{
    switch (highNibble) {
    case 0x4:
        return Type::Data;
    case 0x5:
        return Type::Ascii;
    case 0x6:
        return Type::Utf16;
    case 0xA:
        return Type::Array;
    case 0xC:
        return Type::Set;
    case 0xD:
        return Type::Dictionary;
    default:
        return Type::Invalid;
    }
}

unsigned unitSize(Type type, unsigned referenceWidth)
{
    switch (type) {
    case Type::Utf16:
        return 2;
    case Type::Array:
    case Type::Set:
        return referenceWidth;
    case Type::Dictionary:
        return 2 * referenceWidth;
    default:
        return 1;
    }
}

/// A number, date or UID of the given width, when that many bytes are there.
PlistItem sized(Type type, unsigned width, const unsigned char* bytes, std::uint64_t available)
{
    if (width > available)
        return {};
    return {type, static_cast<std::uint8_t>(width), bytes, width};
}

} // namespace

bool PlistItem::isText(QLatin1String expected) const
{
    if (count != static_cast<std::uint64_t>(expected.size()) || !isText())
        return false;
    return type == Type::Ascii ? std::memcmp(bytes, expected.data(), count) == 0 : text().toString() == expected;
}

std::optional<std::int64_t> PlistItem::integer() const
{
    switch (width) {
    case 1:
        return bytes[0];
    case 2:
        return qFromBigEndian<quint16>(bytes);
    case 4:
        return qFromBigEndian<quint32>(bytes);
    case 8:
        return qFromBigEndian<qint64>(bytes);
    default: {
        const auto high = qFromBigEndian<qint64>(bytes);
        const auto low = qFromBigEndian<qint64>(bytes + 8);
        return high == (low < 0 ? -1 : 0) ? std::optional<std::int64_t>(low) : std::nullopt;
    }
    }
}

double PlistItem::real() const
{
    if (width == 4)
        return static_cast<double>(std::bit_cast<float>(qFromBigEndian<quint32>(bytes)));
    return std::bit_cast<double>(qFromBigEndian<quint64>(bytes));
}

std::size_t PlistItem::byteCount(unsigned referenceWidth) const
{
    return static_cast<std::size_t>(count) * unitSize(type, referenceWidth);
}

bool BinaryPlist::hasHeader(const QByteArray& bytes)
{
    return bytes.startsWith("bplist0");
}

std::optional<BinaryPlist> BinaryPlist::open(const QByteArray& bytes, QString& reason)
{
    BinaryPlist plist;
    plist._bytes = bytes;
    const auto size = static_cast<std::uint64_t>(bytes.size());
    if (!hasHeader(bytes) || size < HeaderSize + TrailerSize) {
        reason = QStringLiteral("not a binary property list");
        return std::nullopt;
    }
    plist._begin = reinterpret_cast<const unsigned char*>(plist._bytes.constData());
    const unsigned char* trailer = plist._begin + (size - TrailerSize);
    plist._offsetWidth = trailer[6];
    plist._referenceWidth = trailer[7];
    const auto objectCount = qFromBigEndian<quint64>(trailer + 8);
    const auto topObject = qFromBigEndian<quint64>(trailer + 16);
    plist._contentEnd = qFromBigEndian<quint64>(trailer + 24);
    const auto isWidth = [](unsigned width) { return width >= 1 && width <= 8; };
    if (!isWidth(plist._offsetWidth) || !isWidth(plist._referenceWidth) || plist._contentEnd < HeaderSize ||
        plist._contentEnd > size - TrailerSize ||
        objectCount > (size - TrailerSize - plist._contentEnd) / plist._offsetWidth || objectCount >= NoObject ||
        topObject >= objectCount) {
        reason = QStringLiteral("the property list is cut short or its trailer is damaged");
        return std::nullopt;
    }
    plist._objectCount = static_cast<std::uint32_t>(objectCount);
    plist._topObject = static_cast<std::uint32_t>(topObject);
    plist._offsets = plist._begin + plist._contentEnd;
    return plist;
}

std::uint64_t BinaryPlist::readOddInteger(const unsigned char* bytes, unsigned width)
{
    std::uint64_t value = 0;
    for (unsigned i = 0; i < width; ++i)
        value = value << 8 | bytes[i];
    return value;
}

PlistItem BinaryPlist::itemAt(std::uint64_t offset) const
{
    const unsigned char* bytes = _begin + offset;
    const unsigned marker = *bytes++;
    const unsigned low = marker & 0xf;
    std::uint64_t available = _contentEnd - offset - 1;
    switch (marker >> 4) {
    case 0x0:
        return {typeOfSimple(marker), 0, bytes, 0};
    case 0x1:
        return low <= 4 ? sized(Type::Integer, 1U << low, bytes, available) : PlistItem{};
    case 0x2:
        return low == 2 || low == 3 ? sized(Type::Real, 1U << low, bytes, available) : PlistItem{};
    case 0x3:
        return low == 3 ? sized(Type::Date, 8, bytes, available) : PlistItem{};
    case 0x8:
        return sized(Type::Uid, low + 1, bytes, available);
    default:
        break;
    }

    const Type type = typeOfCounted(marker >> 4);
    std::uint64_t count = low;
    if (low == 0xf) {
        // The count stands in an integer object of its own.
        if (available == 0 || (*bytes & 0xf0) != 0x10 || (*bytes & 0xf) > 3)
            return {};
        const unsigned width = 1U << (*bytes & 0xf);
        if (available < 1 + width)
            return {};
        count = readInteger(bytes + 1, width);
        bytes += 1 + width;
        available -= 1 + width;
    }
    if (count > available / unitSize(type, _referenceWidth))
        return {};
    if ((type == Type::Ascii || type == Type::Utf16) && count > MaximumTextLength)
        return {};
    return {type, 0, bytes, count};
}

std::uint32_t BinaryPlist::find(const PlistItem& dictionary, QLatin1String key) const
{
    for (std::uint64_t i = 0; i < dictionary.count; ++i) {
        if (item(this->key(dictionary, i)).isText(key))
            return value(dictionary, i);
    }
    return NoObject;
}

std::uint32_t BinaryPlist::uid(const PlistItem& item)
{
    if (item.width > 8)
        return NoObject;
    const std::uint64_t number = readInteger(item.bytes, item.width);
    return number < NoObject ? static_cast<std::uint32_t>(number) : NoObject;
}

} // namespace quarry
