#pragma once

#include "archive/StoredText.h"

#include <QByteArray>
#include <QString>
#include <QtEndian>

#include <cstdint>
#include <optional>

namespace quarry {

/// One object of a binary property list, as it lies in the file: its type and where its content begins.
struct PlistItem {
    enum class Type : std::uint8_t {
        Invalid, ///< Out of range, cut short, or of no known type.
        Null,
        False,
        True,
        Integer,
        Real,
        Date,
        Data,
        Ascii,
        Utf16,
        Uid,
        Array,
        Set,
        Dictionary,
    };

    Type type = Type::Invalid;
    std::uint8_t width = 0; ///< Bytes of a number, date or UID.
    const unsigned char* bytes = nullptr;
    std::uint64_t count = 0; ///< Bytes, characters, units, elements, or pairs of a dictionary.

    [[nodiscard]] bool isValid() const { return type != Type::Invalid; }
    [[nodiscard]] bool isText() const { return type == Type::Ascii || type == Type::Utf16; }
    [[nodiscard]] bool isContainer() const { return type >= Type::Array; }

    /// A view of the file's bytes; this must be a text.
    [[nodiscard]] StoredText text() const
    {
        return StoredText::view(reinterpret_cast<const char*>(bytes), static_cast<std::uint32_t>(count),
                                type == Type::Ascii ? StoredText::Encoding::Ascii
                                                    : StoredText::Encoding::Utf16BigEndian);
    }
    [[nodiscard]] bool isText(QLatin1String text) const;
    /// This must be an integer. None when it does not fit.
    [[nodiscard]] std::optional<std::int64_t> integer() const;
    /// This must be a real or a date, whose unit is seconds since 2001.
    [[nodiscard]] double real() const;
    /// The content of this object alone, without what a container refers to.
    [[nodiscard]] std::size_t byteCount(unsigned referenceWidth) const;
};

/// A binary property list read in place: an index over its objects and no tree of nodes. Nothing in the bytes is
/// trusted; every look at an object checks that it lies within the file. Objects are named by their number.
class BinaryPlist final {
public:
    static constexpr std::uint32_t NoObject = 0xffffffff;

    /// None, and a reason, when header or trailer make no sense.
    [[nodiscard]] static std::optional<BinaryPlist> open(const QByteArray& bytes, QString& reason);
    /// Whether the bytes begin as a binary property list does.
    [[nodiscard]] static bool hasHeader(const QByteArray& bytes);

    [[nodiscard]] std::uint32_t objectCount() const { return _objectCount; }
    [[nodiscard]] std::uint32_t topObject() const { return _topObject; }
    [[nodiscard]] unsigned referenceWidth() const { return _referenceWidth; }
    [[nodiscard]] qsizetype fileSize() const { return _bytes.size(); }

    /// An invalid item for a number out of range and for an object that does not lie within the file.
    [[nodiscard]] PlistItem item(std::uint32_t object) const
    {
        const std::uint64_t offset = offsetOf(object);
        return offset == 0 ? PlistItem{} : itemAt(offset);
    }
    /// Follows an object that is a UID. NoObject, and `isUid` false, for any other; NoObject for one that counts
    /// beyond everything.
    [[nodiscard]] std::uint32_t uidIn(std::uint32_t object, bool& isUid) const
    {
        const std::uint64_t offset = offsetOf(object);
        const unsigned char* bytes = _begin + offset;
        isUid = offset != 0 && (*bytes & 0xf0) == 0x80;
        const unsigned width = (*bytes & 0xf) + 1U;
        if (!isUid || width > 8 || width >= _contentEnd - offset)
            return NoObject;
        const std::uint64_t number = readInteger(bytes + 1, width);
        return number < NoObject ? static_cast<std::uint32_t>(number) : NoObject;
    }
    /// The number of the object an array or a set has at an index below its count.
    [[nodiscard]] std::uint32_t element(const PlistItem& container, std::uint64_t index) const
    {
        return reference(container.bytes + index * _referenceWidth);
    }
    [[nodiscard]] std::uint32_t key(const PlistItem& dictionary, std::uint64_t index) const
    {
        return element(dictionary, index);
    }
    [[nodiscard]] std::uint32_t value(const PlistItem& dictionary, std::uint64_t index) const
    {
        return element(dictionary, dictionary.count + index);
    }
    /// The number of the object a dictionary has for a key, or NoObject.
    [[nodiscard]] std::uint32_t find(const PlistItem& dictionary, QLatin1String key) const;
    /// What a UID counts; NoObject when it is beyond every count.
    [[nodiscard]] static std::uint32_t uid(const PlistItem& item);

private:
    BinaryPlist() = default;
    static std::uint64_t readInteger(const unsigned char* bytes, unsigned width)
    {
        switch (width) {
        case 1:
            return bytes[0];
        case 2:
            return qFromBigEndian<quint16>(bytes);
        case 4:
            return qFromBigEndian<quint32>(bytes);
        case 8:
            return qFromBigEndian<quint64>(bytes);
        default:
            return readOddInteger(bytes, width);
        }
    }
    static std::uint64_t readOddInteger(const unsigned char* bytes, unsigned width);
    /// Where an object lies; 0 when that is outside of the file's content.
    [[nodiscard]] std::uint64_t offsetOf(std::uint32_t object) const
    {
        if (object >= _objectCount)
            return 0;
        const std::uint64_t offset = readInteger(_offsets + std::size_t(object) * _offsetWidth, _offsetWidth);
        return offset >= HeaderSize && offset < _contentEnd ? offset : 0;
    }
    [[nodiscard]] PlistItem itemAt(std::uint64_t offset) const;

    static constexpr std::uint64_t HeaderSize = 8;
    [[nodiscard]] std::uint32_t reference(const unsigned char* bytes) const
    {
        const std::uint64_t number = readInteger(bytes, _referenceWidth);
        return number < NoObject ? static_cast<std::uint32_t>(number) : NoObject;
    }

    QByteArray _bytes;
    const unsigned char* _begin = nullptr;
    const unsigned char* _offsets = nullptr;
    std::uint64_t _contentEnd = 0; ///< Where the table of offsets begins.
    std::uint32_t _objectCount = 0;
    std::uint32_t _topObject = 0;
    std::uint8_t _offsetWidth = 0;
    std::uint8_t _referenceWidth = 0;
};

} // namespace quarry
