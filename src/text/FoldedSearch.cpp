#include "text/FoldedSearch.h"

namespace quarry {

qsizetype indexOfFolded(QStringView text, QStringView foldedMarker, qsizetype from)
{
    if (foldedMarker.isEmpty())
        return -1;
    const QChar first = foldedMarker.front();
    // A mark such as "<" has one form only, and the library finds single characters fastest.
    const bool caseless = first < u'A' || (first > u'Z' && first < u'a');
    const qsizetype last = text.size() - foldedMarker.size();
    for (qsizetype at = from; at <= last; ++at) {
        if (caseless) {
            at = text.indexOf(first, at);
            if (at < 0 || at > last)
                return -1;
        }
        if (standsFoldedAt(text, at, foldedMarker))
            return at;
    }
    return -1;
}

} // namespace quarry
