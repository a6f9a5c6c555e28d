#pragma once

#include "archive/StoredText.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

namespace quarry {

/// Memory for the slots of a table, all bytes zero, of which the untouched part costs nothing.
template <typename Entry>
class ZeroedSlots final {
public:
    explicit ZeroedSlots(std::size_t count)
        : _count(count), _slots(static_cast<Entry*>(std::calloc(count, sizeof(Entry))))
    {
        if (!_slots)
            throw std::bad_alloc();
    }
    [[nodiscard]] std::size_t size() const { return _count; }
    Entry& operator[](std::size_t index) { return _slots.get()[index]; }
    const Entry& operator[](std::size_t index) const { return _slots.get()[index]; }
    [[nodiscard]] const Entry* begin() const { return _slots.get(); }
    [[nodiscard]] const Entry* end() const { return _slots.get() + _count; }

private:
    struct Free {
        void operator()(Entry* slots) const { std::free(slots); }
    };
    std::size_t _count;
    std::unique_ptr<Entry, Free> _slots;
};

/// Finds equal texts: from a text to the numbers given with it. The texts themselves stay where they are and must
/// outlive the table. Texts are compared in full, and hashed with a seed of the process, so that a page cannot be
/// written to make it slow.
class TextTable final {
public:
    /// Of a text whose place is already on its way into the processor's cache: looking many texts up is a matter of
    /// waiting for memory, and less so when the next ones are named early.
    struct Key {
        std::uint32_t tag = 0;
    };
    struct Numbers {
        std::uint32_t text = 0; ///< 0 when the text is new; the caller then fills it in (not 0).
        std::uint32_t url = 0;  ///< For the caller to fill in or not.
    };

    explicit TextTable(std::size_t expectedTexts);

    [[nodiscard]] Key keyOf(const StoredText& text) const;
    /// Valid until the next call.
    [[nodiscard]] Numbers& numbersOf(const StoredText& text, Key key);

private:
    struct Entry {
        const char* bytes;
        std::uint32_t size;
        std::uint32_t tag; ///< Of the hash; the lowest bit tells the encodings apart.
        Numbers numbers;
    };
    void grow();

    ZeroedSlots<Entry> _slots;
    std::size_t _used = 0;
};

/// From 64-bit numbers to numbers given with them, in the same way.
class NumberTable final {
public:
    explicit NumberTable(std::size_t expectedNumbers = 0);
    void prefetch(std::uint64_t key) const { __builtin_prefetch(&_slots[firstPlaceOf(key)]); }
    [[nodiscard]] std::uint32_t& numberOf(std::uint64_t key);

private:
    struct Entry {
        std::uint64_t key;
        std::uint32_t number;
    };
    void grow();
    [[nodiscard]] std::size_t firstPlaceOf(std::uint64_t key) const;
    [[nodiscard]] std::size_t placeOf(std::uint64_t key) const;

    ZeroedSlots<Entry> _slots;
    std::size_t _used = 0;
};

} // namespace quarry
