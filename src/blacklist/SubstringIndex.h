#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quarry {

/// Many texts, asked which of them holds a given one somewhere in it. Immutable once made, so any thread may ask.
class SubstringIndex final {
public:
    static constexpr std::uint32_t None = 0xffffffff;

    SubstringIndex() : SubstringIndex(std::vector<std::string>()) {}
    explicit SubstringIndex(std::vector<std::string> texts);

    /// The first text that holds the other one; None when there is none.
    [[nodiscard]] std::uint32_t firstHolding(std::string_view part) const;

private:
    static constexpr std::size_t GramSize = 4;
    struct Place {
        std::uint32_t text;
        std::uint32_t offset;
    };
    [[nodiscard]] std::size_t bucketOf(const char* gram) const;
    [[nodiscard]] std::uint32_t firstHoldingShort(std::string_view part) const;

    std::vector<std::string> _texts;
    /// Every place of every text where GramSize bytes begin, by those bytes' bucket.
    std::vector<Place> _places;
    std::vector<std::uint32_t> _bucketBegin; ///< By bucket, and the end.
    unsigned _shift = 31;
};

} // namespace quarry
