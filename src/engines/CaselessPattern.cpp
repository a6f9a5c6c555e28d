#include "engines/CaselessPattern.h"

#include "engines/UnitBlock.h"

#include <array>
#include <climits>

namespace quarry {

namespace {

/// Places in an order from rare to common in the markup of result pages, roughly. Rare characters make good anchors.
constexpr auto commonness = [] {
    constexpr char16_t RarestFirst[] = u"!|@$zqjxyvw_gfbmuhp-d0123456789;:.,lcrnoiat='\"<>/e ";
    std::array<unsigned char, 128> places{};
    for (unsigned char place = 0; RarestFirst[place] != 0; ++place)
        places[RarestFirst[place]] = place;
    return places;
}();

bool canBeAnchor(char16_t folded)
{
    return folded < commonness.size() && folded != u's' && folded != u'k';
}

} // namespace

CaselessPattern::CaselessPattern(QStringView pattern) : _folded(pattern.toString())
{
    for (QChar& c : _folded)
        c = QChar(foldedUnit(c.unicode()));
    chooseAnchors();
}

void CaselessPattern::chooseAnchors()
{
    int best = INT_MAX;
    int second = INT_MAX;
    for (qsizetype i = 0; i < _folded.size(); ++i) {
        const char16_t unit = std::as_const(_folded).at(i).unicode();
        if (!canBeAnchor(unit))
            continue;
        const Anchor anchor{i, unit, unit >= u'a' && unit <= u'z'};
        const int place = commonness[unit];
        if (place < best) {
            second = std::exchange(best, place);
            _second = std::exchange(_first, anchor);
        } else if (place < second) {
            second = place;
            _second = anchor;
        }
    }
    if (_second.offset < 0)
        _second = _first;
}

bool CaselessPattern::restMatches(const char16_t* units) const
{
    const char16_t* pattern = QStringView(_folded).utf16();
    for (qsizetype i = _folded.size() - 1; i > 0; --i) {
        if (foldedUnit(units[i]) != pattern[i])
            return false;
    }
    return true;
}

unsigned CaselessPattern::hits(const Anchor& anchor, const char16_t* units)
{
    const UnitBlock block(units + anchor.offset);
    return anchor.isLetter ? block.equalLetter(anchor.unit) : block.equal(anchor.unit);
}

qsizetype CaselessPattern::find(QStringView text, qsizetype from) const
{
    const char16_t* units = text.utf16();
    const qsizetype last = text.size() - _folded.size();
    qsizetype at = from;
    for (; _first.offset >= 0 && at + UnitBlock::Size <= last; at += UnitBlock::Size) {
        unsigned mask = hits(_first, units + at) & hits(_second, units + at);
        for (; mask != 0; mask &= mask - 1) {
            const qsizetype candidate = at + std::countr_zero(mask);
            if (matchesAt(text, candidate))
                return candidate;
        }
    }
    for (; at <= last; ++at) {
        if (matchesAt(text, at))
            return at;
    }
    return -1;
}

} // namespace quarry
