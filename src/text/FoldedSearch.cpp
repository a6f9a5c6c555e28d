#include "text/FoldedSearch.h"

#include "text/UnitSearch.h"

namespace quarry {

qsizetype indexOfFolded(QStringView text, QStringView foldedMarker, qsizetype from)
{
    if (foldedMarker.isEmpty() || text.size() - from < foldedMarker.size())
        return -1;
    const char16_t* const begin = text.utf16();
    const char16_t* const end = begin + text.size() - foldedMarker.size() + 1;
    const char16_t first = foldedMarker.front().unicode();
    // A mark such as "<" has one form only and is found many units at a time.
    const bool isCaseless = first < u'A' || (first > u'Z' && first < u'a');
    for (const char16_t* at = begin + from; at != end; ++at) {
        if (isCaseless && (at = findUnit(at, end, first)) == end)
            break;
        if (standsFoldedAt(text, at - begin, foldedMarker))
            return at - begin;
    }
    return -1;
}

} // namespace quarry
