#include "archive/StoredText.h"

#include <QtEndian>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>

namespace quarry {

namespace {

/// Stands before the bytes of an owned text.
struct BlockHeader {
    std::atomic<std::uint32_t> shares{1};
};

BlockHeader* headerOf(const char* bytes)
{
    void* start = const_cast<char*>(bytes) - sizeof(BlockHeader);
    return std::launder(static_cast<BlockHeader*>(start));
}

char* allocateBlock(std::size_t size)
{
    auto* start = static_cast<char*>(::operator new(sizeof(BlockHeader) + size));
    ::new (static_cast<void*>(start)) BlockHeader;
    return start + sizeof(BlockHeader);
}

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

} // namespace

StoredText::StoredText(const StoredText& other)
    : _bytes(other._bytes), _length(other._length), _encoding(other._encoding), _owned(other._owned)
{
    if (_owned)
        headerOf(_bytes)->shares.fetch_add(1, std::memory_order_relaxed);
}

StoredText::~StoredText()
{
    if (_owned && headerOf(_bytes)->shares.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        BlockHeader* header = headerOf(_bytes);
        header->~BlockHeader();
        ::operator delete(header);
    }
}

void StoredText::swap(StoredText& other) noexcept
{
    std::swap(_bytes, other._bytes);
    std::swap(_length, other._length);
    std::swap(_encoding, other._encoding);
    std::swap(_owned, other._owned);
}

StoredText StoredText::view(const char* bytes, std::uint32_t length, Encoding encoding)
{
    StoredText text;
    text._bytes = bytes;
    text._length = length;
    text._encoding = encoding;
    return text;
}

StoredText StoredText::copyOf(QStringView text)
{
    StoredText result;
    if (text.isEmpty())
        return result;
    result._length = static_cast<std::uint32_t>(text.size());
    result._encoding = isAscii(text) ? Encoding::Ascii : Encoding::Utf16BigEndian;
    char* bytes = allocateBlock(result.byteCount());
    if (result._encoding == Encoding::Ascii)
        std::transform(text.begin(), text.end(), bytes, [](QChar c) { return static_cast<char>(c.unicode()); });
    else
        qToBigEndian<quint16>(text.utf16(), text.size(), bytes);
    result._bytes = bytes;
    result._owned = true;
    return result;
}

StoredText StoredText::copyOfUtf8(std::string_view text)
{
    const bool isPlain = std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
    if (!isPlain || text.empty())
        return copyOf(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    StoredText result = view(allocateBlock(text.size()), static_cast<std::uint32_t>(text.size()), Encoding::Ascii);
    std::memcpy(const_cast<char*>(result._bytes), text.data(), text.size());
    result._owned = true;
    return result;
}

QString StoredText::toString() const
{
    if (_length == 0)
        return QStringLiteral("");
    // A writer that puts other bytes into an ASCII string is out of order; Latin-1 keeps length and units.
    if (_encoding == Encoding::Ascii)
        return QString::fromLatin1(_bytes, static_cast<qsizetype>(_length));
    QString text(static_cast<qsizetype>(_length), Qt::Uninitialized);
    qFromBigEndian<quint16>(_bytes, text.size(), text.data());
    return text;
}

char16_t StoredText::unitAt(std::uint32_t index) const
{
    if (_encoding == Encoding::Ascii)
        return static_cast<unsigned char>(_bytes[index]);
    return qFromBigEndian<quint16>(_bytes + std::size_t(index) * 2);
}

bool operator==(const StoredText& a, const StoredText& b)
{
    if (a._length != b._length)
        return false;
    if (a._encoding == b._encoding)
        return a._bytes == b._bytes || a.bytes() == b.bytes();
    for (std::uint32_t i = 0; i < a._length; ++i) {
        if (a.unitAt(i) != b.unitAt(i))
            return false;
    }
    return true;
}

std::strong_ordering operator<=>(const StoredText& a, const StoredText& b)
{
    // Big-endian units and ASCII bytes both order as their bytes do.
    if (a._encoding == b._encoding)
        return a.bytes().compare(b.bytes()) <=> 0;
    const std::uint32_t common = std::min(a._length, b._length);
    for (std::uint32_t i = 0; i < common; ++i) {
        const char16_t left = a.unitAt(i);
        const char16_t right = b.unitAt(i);
        if (left != right)
            return left <=> right;
    }
    return a._length <=> b._length;
}

} // namespace quarry
