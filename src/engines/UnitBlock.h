#pragma once

#include <QStringView>

#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quarry {

/// Sixteen UTF-16 units looked at at once. Comparisons answer with one bit a unit, the first unit lowest.
class UnitBlock final {
public:
    static constexpr qsizetype Size = 16;

#if defined(__SSE2__)
    explicit UnitBlock(const char16_t* units)
        : _low(_mm_loadu_si128(reinterpret_cast<const __m128i*>(units))),
          _high(_mm_loadu_si128(reinterpret_cast<const __m128i*>(units + 8)))
    {
    }

    [[nodiscard]] unsigned equal(char16_t unit) const
    {
        return maskOf(compared(_low, unit), compared(_high, unit));
    }
    [[nodiscard]] unsigned equalEither(char16_t a, char16_t b) const
    {
        return maskOf(_mm_or_si128(compared(_low, a), compared(_low, b)),
                      _mm_or_si128(compared(_high, a), compared(_high, b)));
    }
    /// Units that are that lower-case ASCII letter or its upper-case form.
    [[nodiscard]] unsigned equalLetter(char16_t lower) const
    {
        const __m128i bit = _mm_set1_epi16(0x20);
        return maskOf(compared(_mm_or_si128(_low, bit), lower), compared(_mm_or_si128(_high, bit), lower));
    }

    /// Writes the units with every `from` as `to`.
    void storeReplacing(char16_t* out, char16_t from, char16_t to) const
    {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), replaced(_low, from, to));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), replaced(_high, from, to));
    }

private:
    static __m128i spread(char16_t unit)
    {
        return _mm_set1_epi16(static_cast<short>(unit));
    }
    static __m128i compared(__m128i units, char16_t unit)
    {
        return _mm_cmpeq_epi16(units, spread(unit));
    }
    static unsigned maskOf(__m128i low, __m128i high)
    {
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
    }
    static __m128i replaced(__m128i units, char16_t from, char16_t to)
    {
        const __m128i hit = compared(units, from);
        return _mm_or_si128(_mm_andnot_si128(hit, units), _mm_and_si128(hit, spread(to)));
    }

    __m128i _low;
    __m128i _high;
#else
    explicit UnitBlock(const char16_t* units)
    {
        std::memcpy(_units, units, sizeof _units);
    }

    [[nodiscard]] unsigned equal(char16_t unit) const
    {
        return maskWhere([unit](char16_t u) { return u == unit; });
    }
    [[nodiscard]] unsigned equalEither(char16_t a, char16_t b) const
    {
        return maskWhere([a, b](char16_t u) { return u == a || u == b; });
    }
    [[nodiscard]] unsigned equalLetter(char16_t lower) const
    {
        return maskWhere([lower](char16_t u) { return (u | 0x20) == lower; });
    }
    void storeReplacing(char16_t* out, char16_t from, char16_t to) const
    {
        for (qsizetype i = 0; i < Size; ++i)
            out[i] = _units[i] == from ? to : _units[i];
    }

private:
    template <typename Test>
    [[nodiscard]] unsigned maskWhere(Test test) const
    {
        unsigned mask = 0;
        for (qsizetype i = 0; i < Size; ++i)
            mask |= static_cast<unsigned>(test(_units[i])) << i;
        return mask;
    }

    char16_t _units[Size];
#endif
};

/// Finds one unit after the other in a text, in order.
class UnitHunt final {
public:
    UnitHunt(QStringView text, char16_t unit, qsizetype from)
        : _units(text.utf16()), _length(text.size()), _base(from), _unit(unit)
    {
        load();
    }

    /// The next position, -1 when there is none left.
    [[nodiscard]] qsizetype next()
    {
        while (_mask == 0) {
            _base += UnitBlock::Size;
            if (_base >= _length)
                return -1;
            load();
        }
        const int bit = std::countr_zero(_mask);
        _mask &= _mask - 1;
        return _base + bit;
    }

private:
    void load()
    {
        if (_base + UnitBlock::Size <= _length) {
            _mask = UnitBlock(_units + _base).equal(_unit);
            return;
        }
        _mask = 0;
        for (qsizetype i = _base; i < _length; ++i)
            _mask |= static_cast<unsigned>(_units[i] == _unit) << (i - _base);
    }

    const char16_t* _units;
    qsizetype _length;
    qsizetype _base;
    unsigned _mask = 0;
    char16_t _unit;
};

} // namespace quarry
