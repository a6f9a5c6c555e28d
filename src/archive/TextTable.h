#pragma once

#include "archive/StoredText.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quarry {

/// Finds equal texts: from a text to a number given with it. The texts themselves stay where they are and must
/// outlive the table. Texts are compared in full, and hashed with a seed of the process, so that a page cannot be
/// written to make it slow.
class TextTable final {
public:
    TextTable();

    /// The place for the text's number: 0 when the text is new; the caller then fills it in (not 0). Valid until the
    /// next call.
    [[nodiscard]] std::uint32_t& numberOf(const StoredText& text);

private:
    struct Entry {
        const char* bytes;
        std::uint32_t size;
        std::uint32_t tag; ///< Of the hash; the lowest bit tells the encodings apart.
        std::uint32_t number;
    };
    void grow();

    std::vector<Entry> _slots;
    std::size_t _used = 0;
};

/// From 64-bit numbers to numbers given with them, in the same way.
class NumberTable final {
public:
    NumberTable();
    [[nodiscard]] std::uint32_t& numberOf(std::uint64_t key);

private:
    struct Entry {
        std::uint64_t key;
        std::uint32_t number;
    };
    void grow();
    [[nodiscard]] std::size_t placeOf(std::uint64_t key) const;

    std::vector<Entry> _slots;
    std::size_t _used = 0;
};

} // namespace quarry
