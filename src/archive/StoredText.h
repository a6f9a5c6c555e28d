#pragma once

#include <QString>
#include <QStringView>

#include <compare>
#include <cstdint>
#include <string_view>
#include <utility>

namespace quarry {

/// A text in the form archives hold it: ASCII bytes, or UTF-16 units with the high byte first. 16 bytes.
///
/// It is either a view of bytes that somebody else keeps alive (view), or a share in a counted block of its own
/// (copyOf). Decoded only when asked for. Safe to read and to copy from several threads.
class StoredText final {
public:
    enum class Encoding : std::uint8_t { Ascii, Utf16BigEndian };

    /// The empty text.
    StoredText() = default;
    StoredText(const StoredText& other);
    StoredText(StoredText&& other) noexcept { swap(other); }
    StoredText& operator=(const StoredText& other)
    {
        StoredText copy(other);
        swap(copy);
        return *this;
    }
    StoredText& operator=(StoredText&& other) noexcept
    {
        swap(other);
        return *this;
    }
    ~StoredText();

    /// Of bytes that outlive this text and every copy of it. `length` counts characters: bytes or units.
    [[nodiscard]] static StoredText view(const char* bytes, std::uint32_t length, Encoding encoding);
    [[nodiscard]] static StoredText copyOf(QStringView text);
    /// The same from UTF-8; broken bytes become replacement characters.
    [[nodiscard]] static StoredText copyOfUtf8(std::string_view text);

    [[nodiscard]] QString toString() const;
    [[nodiscard]] std::uint32_t length() const { return _length; }
    [[nodiscard]] bool isEmpty() const { return _length == 0; }
    [[nodiscard]] Encoding encoding() const { return _encoding; }
    [[nodiscard]] std::string_view bytes() const { return {_bytes, byteCount()}; }
    [[nodiscard]] char16_t unitAt(std::uint32_t index) const;

    /// Equality and order by UTF-16 units, whatever the encoding of either side.
    friend bool operator==(const StoredText& a, const StoredText& b);
    friend std::strong_ordering operator<=>(const StoredText& a, const StoredText& b);

private:
    void swap(StoredText& other) noexcept;
    [[nodiscard]] std::size_t byteCount() const
    {
        return _encoding == Encoding::Ascii ? std::size_t(_length) : std::size_t(_length) * 2;
    }

    const char* _bytes = "";
    std::uint32_t _length = 0;
    Encoding _encoding = Encoding::Ascii;
    bool _owned = false;
};

static_assert(sizeof(StoredText) == 16);

} // namespace quarry
