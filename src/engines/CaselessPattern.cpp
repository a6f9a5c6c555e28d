#include "engines/CaselessPattern.h"

#include "engines/UnitBlock.h"

#include <array>

namespace quarry {

namespace {

constexpr char16_t LongS = 0x17F;
constexpr char16_t KelvinSign = 0x212A;

constexpr bool isAsciiLetter(char16_t folded)
{
    return folded >= u'a' && folded <= u'z';
}

/// Folds what can match an ASCII character; everything else beyond ASCII stays and matches none.
constexpr char16_t foldedForAscii(char16_t unit)
{
    if (unit >= u'A' && unit <= u'Z')
        return static_cast<char16_t>(unit + 0x20);
    if (unit == LongS)
        return u's';
    return unit == KelvinSign ? u'k' : unit;
}

/// How often a character stands in the markup of result pages, roughly: the rarest ones make the best anchors.
int commonness(char16_t folded)
{
    constexpr QStringView RarestFirst = u"!|@$zqjxykvw_gfbmuhp-d0123456789;:.,lcrsnoiat='\"<>/e ";
    return static_cast<int>(RarestFirst.indexOf(folded));
}

template <typename Anchor>
unsigned hits(const Anchor& anchor, const char16_t* units)
{
    const UnitBlock block(units + anchor.offset);
    return anchor.isLetter ? block.equalLetter(anchor.unit) : block.equal(anchor.unit);
}

} // namespace

CaselessPattern::CaselessPattern(QStringView pattern)
{
    for (const QChar c : pattern)
        _isAscii = _isAscii && c.unicode() < 128;
    _folded = _isAscii ? pattern.toString().toLower() : pattern.toString();
    if (_isAscii)
        chooseAnchors();
}

void CaselessPattern::chooseAnchors()
{
    int best = INT_MAX;
    int second = INT_MAX;
    for (qsizetype i = 0; i < _folded.size(); ++i) {
        const char16_t unit = _folded.at(i).unicode();
        if (unit == u's' || unit == u'k')
            continue;
        const Anchor anchor{i, unit, isAsciiLetter(unit)};
        const int rank = commonness(unit);
        if (rank < best) {
            second = std::exchange(best, rank);
            _second = std::exchange(_first, anchor);
        } else if (rank < second) {
            second = rank;
            _second = anchor;
        }
    }
    _hasAnchors = best != INT_MAX;
    if (second == INT_MAX)
        _second = _first;
}

bool CaselessPattern::matchesAt(QStringView text, qsizetype position) const
{
    if (position + _folded.size() > text.size())
        return false;
    if (!_isAscii)
        return text.mid(position, _folded.size()).compare(_folded, Qt::CaseInsensitive) == 0;
    const char16_t* units = text.utf16() + position;
    for (qsizetype i = 0; i < _folded.size(); ++i) {
        if (foldedForAscii(units[i]) != _folded.at(i).unicode())
            return false;
    }
    return true;
}

qsizetype CaselessPattern::find(QStringView text, qsizetype from) const
{
    if (!_isAscii || _folded.isEmpty())
        return text.indexOf(_folded, from, Qt::CaseInsensitive);
    if (_hasAnchors)
        return findByAnchors(text, from);
    for (qsizetype i = from; i + _folded.size() <= text.size(); ++i) {
        if (matchesAt(text, i))
            return i;
    }
    return -1;
}

qsizetype CaselessPattern::findByAnchors(QStringView text, qsizetype from) const
{
    const char16_t* units = text.utf16();
    const qsizetype lastBlock = text.size() - _folded.size() - UnitBlock::Size;
    qsizetype at = from;
    for (; at <= lastBlock; at += UnitBlock::Size) {
        unsigned mask = hits(_first, units + at) & hits(_second, units + at);
        for (; mask != 0; mask &= mask - 1) {
            const qsizetype candidate = at + std::countr_zero(mask);
            if (matchesAt(text, candidate))
                return candidate;
        }
    }
    for (; at + _folded.size() <= text.size(); ++at) {
        if (matchesAt(text, at))
            return at;
    }
    return -1;
}

} // namespace quarry
