#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quarry {

/// Which of the eight units of a block passed a comparison.
class UnitMask final {
public:
    using Lanes [[gnu::vector_size(16)]] = short;

    explicit UnitMask(Lanes passed) : _passed(passed) {}

    friend UnitMask operator|(const UnitMask& a, const UnitMask& b) { return UnitMask(a._passed | b._passed); }
    friend UnitMask operator&(const UnitMask& a, const UnitMask& b) { return UnitMask(a._passed & b._passed); }

    [[nodiscard]] bool isEmpty() const
    {
        std::uint64_t halves[2];
        static_assert(sizeof(_passed) == sizeof(halves));
        std::memcpy(halves, &_passed, sizeof(halves));
        return (halves[0] | halves[1]) == 0;
    }

private:
    Lanes _passed;
};

/// Eight units that are compared with a single one at once, as a single one would be: one generic test does for both.
class EightUnits final {
public:
    static constexpr std::ptrdiff_t size = 8;

    explicit EightUnits(const char16_t* p) { std::memcpy(&_units, p, sizeof(_units)); }

    friend UnitMask operator==(const EightUnits& a, char16_t b) { return UnitMask(a._units == all(b)); }
    friend UnitMask operator>=(const EightUnits& a, char16_t b) { return UnitMask(a._units >= all(b)); }
    friend UnitMask operator<(const EightUnits& a, char16_t b) { return UnitMask(a._units < all(b)); }

private:
    using Lanes [[gnu::vector_size(16)]] = unsigned short;
    static Lanes all(char16_t unit) { return Lanes{} + static_cast<unsigned short>(unit); }

    Lanes _units;
};

/// The first position at or after `p` whose unit passes the test, or `end`. The test gets a unit or a block of them
/// and combines its comparisons with "|" and "&" only.
template <typename Test>
[[nodiscard]] inline const char16_t* findUnit(const char16_t* p, const char16_t* end, Test test)
{
    while (end - p >= EightUnits::size && test(EightUnits(p)).isEmpty())
        p += EightUnits::size;
    while (p != end && !test(*p))
        ++p;
    return p;
}

[[nodiscard]] inline const char16_t* findUnit(const char16_t* p, const char16_t* end, char16_t wanted)
{
    return findUnit(p, end, [wanted](auto unit) { return unit == wanted; });
}

/// The same with a test of the unit and the one before it: something must stand before `p`.
template <typename Test>
[[nodiscard]] inline const char16_t* findUnitPair(const char16_t* p, const char16_t* end, Test test)
{
    while (end - p >= EightUnits::size && test(EightUnits(p), EightUnits(p - 1)).isEmpty())
        p += EightUnits::size;
    while (p != end && !test(*p, p[-1]))
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
