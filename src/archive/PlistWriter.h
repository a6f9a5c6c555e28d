#pragma once

#include "archive/StoredText.h"
#include "platform/FileStore.h"

#include <QByteArray>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace quarry {

/// Collects what is written in memory.
class MemorySink final : public ByteSink {
public:
    [[nodiscard]] bool append(const char* data, std::size_t size) override
    {
        bytes.append(data, static_cast<qsizetype>(size));
        return true;
    }
    QByteArray bytes;
};

/// Writes a binary property list in one pass: objects go out as they are added, in blocks, and only their offsets
/// are kept until the end. Objects are named by the number that adding them answers; a number can be taken before
/// its object is written (reserve, then begin).
class PlistWriter final {
public:
    using Object = std::uint32_t;

    /// `expectedObjects` must not be less than the number of objects that come: it settles how wide references are.
    PlistWriter(ByteSink& sink, std::uint64_t expectedObjects);

    [[nodiscard]] Object reserve();
    /// The next object written is the reserved one.
    void begin(Object reserved) { _reserved = reserved; }

    Object null() { return simple(0x00); }
    Object boolean(bool value) { return simple(value ? 0x09 : 0x08); }
    Object integer(std::int64_t value);
    Object real(double value) { return eightBytes(0x23, value); }
    Object date(double secondsSinceReference) { return eightBytes(0x33, secondsSinceReference); }
    Object data(std::string_view bytes);
    Object text(const StoredText& text);
    Object uid(std::uint32_t number);
    Object array(std::span<const Object> elements);
    Object set(std::span<const Object> elements);
    /// As many values as keys.
    Object dictionary(std::span<const Object> keys, std::span<const Object> values);
    /// A number as it lies in another property list, marker excluded.
    Object number(unsigned char marker, std::string_view bytes);

    /// Writes what is left, the offsets and the trailer. False when the sink refused something.
    [[nodiscard]] bool finish(Object top);
    [[nodiscard]] bool failed() const { return _failed; }

private:
    Object start();
    Object simple(unsigned char marker);
    Object eightBytes(unsigned char marker, double value);
    void markerWithCount(unsigned char high, std::uint64_t count);
    void references(std::span<const Object> objects);
    void put(const char* bytes, std::size_t size);
    template <typename T>
    void putInteger(T value);
    void putSized(std::uint64_t value, unsigned width);
    char* room(std::size_t size);
    void flush();

    static constexpr std::size_t BufferSize = std::size_t(512) << 10;
    static constexpr Object None = 0xffffffff;
    /// Offsets come in blocks, since a growing array would for a moment exist twice.
    static constexpr std::size_t BlockSize = std::size_t(1) << 13;
    struct OffsetBlock {
        std::uint64_t base; ///< Of the file when the block came; what follows is not far from it.
        std::unique_ptr<std::uint32_t[]> distances;
    };
    void noteOffset(Object object, std::uint64_t offset);
    [[nodiscard]] std::uint64_t offsetOf(Object object) const;

    ByteSink& _sink;
    unsigned _referenceWidth;
    std::unique_ptr<char[]> _buffer;
    std::size_t _used = 0;
    std::uint64_t _written = 0; ///< Bytes handed to the sink before the buffer.
    std::vector<OffsetBlock> _offsets;
    std::unordered_map<Object, std::uint64_t> _farOffsets; ///< Of objects placed very long after they were reserved.
    Object _count = 0;
    Object _reserved = None;
    bool _failed = false;
};

} // namespace quarry
