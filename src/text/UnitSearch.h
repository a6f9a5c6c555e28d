#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quarry {

/// Eight units that are compared at once; a comparison makes a mask, as with a single unit.
using UnitBlock [[gnu::vector_size(16)]] = unsigned short;
inline constexpr std::ptrdiff_t unitsOfBlock = 8;

[[nodiscard]] inline UnitBlock loadBlock(const char16_t* p)
{
    UnitBlock block;
    std::memcpy(&block, p, sizeof(block));
    return block;
}

template <typename Mask>
[[nodiscard]] inline bool anyUnit(const Mask& mask)
{
    std::uint64_t halves[2];
    static_assert(sizeof(mask) == sizeof(halves));
    std::memcpy(halves, &mask, sizeof(halves));
    return (halves[0] | halves[1]) != 0;
}

/// The first position at or after `p` whose unit passes the test, or `end`. The test gets a unit or a block of them
/// and combines its comparisons with "|" and "&" only.
template <typename Test>
[[nodiscard]] inline const char16_t* findUnit(const char16_t* p, const char16_t* end, Test test)
{
    while (end - p >= unitsOfBlock && !anyUnit(test(loadBlock(p))))
        p += unitsOfBlock;
    while (p != end && !test(static_cast<unsigned short>(*p)))
        ++p;
    return p;
}

[[nodiscard]] inline const char16_t* findUnit(const char16_t* p, const char16_t* end, char16_t wanted)
{
    return findUnit(p, end, [wanted](auto unit) { return unit == static_cast<unsigned short>(wanted); });
}

/// The same with a test of the unit and the one before it: something must stand before `p`.
template <typename Test>
[[nodiscard]] inline const char16_t* findUnitPair(const char16_t* p, const char16_t* end, Test test)
{
    while (end - p >= unitsOfBlock && !anyUnit(test(loadBlock(p), loadBlock(p - 1))))
        p += unitsOfBlock;
    while (p != end && !test(static_cast<unsigned short>(*p), static_cast<unsigned short>(p[-1])))
        ++p;
    return p;
}

/// Moves the units [from, end) down to `to`, which may be where they are; where the next unit goes.
inline char16_t* moveUnits(char16_t* to, const char16_t* from, const char16_t* end)
{
    if (to != from)
        std::memmove(to, from, static_cast<std::size_t>(end - from) * sizeof(char16_t));
    return to + (end - from);
}

/// The units of a text for writing in place.
[[nodiscard]] inline char16_t* writableUnits(QString& text)
{
    return reinterpret_cast<char16_t*>(text.data());
}

} // namespace quarry
