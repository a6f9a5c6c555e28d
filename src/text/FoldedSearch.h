#pragma once

#include <QChar>
#include <QStringView>

namespace quarry {

// Search that ignores case by plain case folding, without locale, a UTF-16 unit at a time. Markers are given in
// folded form (lower case), so that only the text is folded, and only where it might match.

[[nodiscard]] inline char16_t foldedUnit(char16_t c)
{
    if (c < 0x80)
        return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
    return QChar::isSurrogate(c) ? c : static_cast<char16_t>(QChar::toCaseFolded(char32_t{c}));
}

/// True when the marker stands at the position, case counted.
[[nodiscard]] inline bool standsAt(QStringView text, qsizetype at, QStringView marker)
{
    if (marker.size() > text.size() - at)
        return false;
    for (qsizetype i = 0; i < marker.size(); ++i) {
        if (text[at + i] != marker[i])
            return false;
    }
    return true;
}

/// True when the folded marker stands at the position.
[[nodiscard]] inline bool standsFoldedAt(QStringView text, qsizetype at, QStringView foldedMarker)
{
    if (foldedMarker.size() > text.size() - at)
        return false;
    for (qsizetype i = 0; i < foldedMarker.size(); ++i) {
        if (foldedUnit(text[at + i].unicode()) != foldedMarker[i].unicode())
            return false;
    }
    return true;
}

/// The first position at or after `from` where the folded marker stands, or -1. Never found when it is empty.
[[nodiscard]] qsizetype indexOfFolded(QStringView text, QStringView foldedMarker, qsizetype from = 0);

} // namespace quarry
