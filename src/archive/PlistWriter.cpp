#include "archive/PlistWriter.h"

#include <QtEndian>

#include <bit>
#include <cstring>

namespace quarry {

namespace {

constexpr std::uint32_t FarAway = 0xffffffff;

/// The width that every reader knows for numbers up to the greatest one.
unsigned widthFor(std::uint64_t greatest)
{
    if (greatest <= 0xff)
        return 1;
    if (greatest <= 0xffff)
        return 2;
    return greatest <= 0xffffffff ? 4 : 8;
}

} // namespace

PlistWriter::PlistWriter(ByteSink& sink, std::uint64_t expectedObjects)
    : _sink(sink), _referenceWidth(widthFor(expectedObjects)),
      _buffer(std::make_unique_for_overwrite<char[]>(BufferSize))
{
    put("bplist00", 8);
}

PlistWriter::Object PlistWriter::reserve()
{
    if (_count % BlockSize == 0)
        _offsets.push_back({_written + _used, std::make_unique_for_overwrite<std::uint32_t[]>(BlockSize)});
    // More objects than references can name: the caller promised fewer.
    if (_count >= (std::uint64_t(1) << (8 * std::min(_referenceWidth, 4U))) - 1)
        _failed = true;
    return _count++;
}

PlistWriter::Object PlistWriter::start()
{
    const Object object = _reserved != None ? _reserved : reserve();
    _reserved = None;
    noteOffset(object, _written + _used);
    return object;
}

void PlistWriter::noteOffset(Object object, std::uint64_t offset)
{
    OffsetBlock& block = _offsets[object / BlockSize];
    const std::uint64_t distance = offset - block.base;
    const bool isFar = distance >= FarAway;
    block.distances[object % BlockSize] = isFar ? FarAway : static_cast<std::uint32_t>(distance);
    if (isFar)
        _farOffsets[object] = offset;
}

std::uint64_t PlistWriter::offsetOf(Object object) const
{
    const OffsetBlock& block = _offsets[object / BlockSize];
    const std::uint32_t distance = block.distances[object % BlockSize];
    return distance == FarAway ? _farOffsets.at(object) : block.base + distance;
}

char* PlistWriter::room(std::size_t size)
{
    if (BufferSize - _used < size)
        flush();
    char* place = _buffer.get() + _used;
    _used += size;
    return place;
}

void PlistWriter::flush()
{
    if (_used > 0 && !_failed && !_sink.append(_buffer.get(), _used))
        _failed = true;
    _written += _used;
    _used = 0;
}

void PlistWriter::put(const char* bytes, std::size_t size)
{
    if (size <= BufferSize / 2) {
        std::memcpy(room(size), bytes, size);
        return;
    }
    flush();
    if (!_failed && !_sink.append(bytes, size))
        _failed = true;
    _written += size;
}

template <typename T>
void PlistWriter::putInteger(T value)
{
    qToBigEndian(value, room(sizeof(T)));
}

void PlistWriter::putSized(std::uint64_t value, unsigned width)
{
    switch (width) {
    case 1:
        return putInteger(static_cast<quint8>(value));
    case 2:
        return putInteger(static_cast<quint16>(value));
    case 4:
        return putInteger(static_cast<quint32>(value));
    default:
        return putInteger(static_cast<quint64>(value));
    }
}

PlistWriter::Object PlistWriter::simple(unsigned char marker)
{
    const Object object = start();
    putInteger(marker);
    return object;
}

PlistWriter::Object PlistWriter::eightBytes(unsigned char marker, double value)
{
    const Object object = simple(marker);
    putInteger(std::bit_cast<quint64>(value));
    return object;
}

PlistWriter::Object PlistWriter::integer(std::int64_t value)
{
    // Narrow integers have no sign; negative ones take the eight bytes that do.
    const unsigned width = value < 0 ? 8 : widthFor(static_cast<std::uint64_t>(value));
    const Object object = simple(static_cast<unsigned char>(0x10 | std::countr_zero(width)));
    putSized(static_cast<std::uint64_t>(value), width);
    return object;
}

PlistWriter::Object PlistWriter::uid(std::uint32_t number)
{
    const unsigned width = widthFor(number);
    const Object object = simple(static_cast<unsigned char>(0x80 | (width - 1)));
    putSized(number, width);
    return object;
}

PlistWriter::Object PlistWriter::number(unsigned char marker, std::string_view bytes)
{
    const Object object = simple(marker);
    put(bytes.data(), bytes.size());
    return object;
}

void PlistWriter::markerWithCount(unsigned char high, std::uint64_t count)
{
    if (count < 15) {
        putInteger(static_cast<quint8>(high | count));
        return;
    }
    const unsigned width = widthFor(count);
    putInteger(static_cast<quint8>(high | 0xf));
    putInteger(static_cast<quint8>(0x10 | std::countr_zero(width)));
    putSized(count, width);
}

PlistWriter::Object PlistWriter::data(std::string_view bytes)
{
    const Object object = start();
    markerWithCount(0x40, bytes.size());
    put(bytes.data(), bytes.size());
    return object;
}

PlistWriter::Object PlistWriter::text(const StoredText& text)
{
    const Object object = start();
    markerWithCount(text.encoding() == StoredText::Encoding::Ascii ? 0x50 : 0x60, text.length());
    put(text.bytes().data(), text.bytes().size());
    return object;
}

void PlistWriter::references(std::span<const Object> objects)
{
    if (_referenceWidth != 4) {
        for (const Object object : objects)
            putSized(object, _referenceWidth);
        return;
    }
    constexpr std::size_t Slice = 1024;
    for (std::size_t begin = 0; begin < objects.size(); begin += Slice) {
        const auto slice = objects.subspan(begin, std::min(Slice, objects.size() - begin));
        qToBigEndian<quint32>(slice.data(), static_cast<qsizetype>(slice.size()), room(slice.size() * 4));
    }
}

PlistWriter::Object PlistWriter::array(std::span<const Object> elements)
{
    const Object object = start();
    markerWithCount(0xa0, elements.size());
    references(elements);
    return object;
}

PlistWriter::Object PlistWriter::set(std::span<const Object> elements)
{
    const Object object = start();
    markerWithCount(0xc0, elements.size());
    references(elements);
    return object;
}

PlistWriter::Object PlistWriter::dictionary(std::span<const Object> keys, std::span<const Object> values)
{
    const Object object = start();
    markerWithCount(0xd0, keys.size());
    references(keys);
    references(values);
    return object;
}

bool PlistWriter::finish(Object top)
{
    if (_failed)
        return false;
    const std::uint64_t tableOffset = _written + _used;
    const unsigned offsetWidth = widthFor(tableOffset);
    for (Object object = 0; object < _count; ++object)
        putSized(offsetOf(object), offsetWidth);
    const char unused[6] = {};
    put(unused, sizeof(unused));
    putSized(offsetWidth, 1);
    putSized(_referenceWidth, 1);
    putSized(_count, 8);
    putSized(top, 8);
    putSized(tableOffset, 8);
    flush();
    return !_failed;
}

} // namespace quarry
