#include "engines/Interleave.h"

#include <QSet>

#include <algorithm>

namespace quarry {

ResultList interleaved(const ServiceLists& lists)
{
    qsizetype total = 0;
    qsizetype longest = 0;
    for (const ResultList& list : lists) {
        total += list.size();
        longest = std::max(longest, list.size());
    }
    ResultList merged;
    merged.reserve(total);
    for (qsizetype i = 0; i < longest; ++i) {
        for (const ResultList& list : lists) {
            if (i < list.size())
                merged.append(list[i]);
        }
    }
    return merged;
}

ResultList arrayWithUniqueItem(const ResultList& records)
{
    QSet<QString> seen;
    seen.reserve(records.size());
    ResultList unique;
    unique.reserve(records.size());
    for (const ResultRecord& record : records) {
        const std::optional<QString> address = record.urlText();
        if (address && seen.contains(*address))
            continue;
        if (address)
            seen.insert(*address);
        unique.append(record);
    }
    return unique;
}

} // namespace quarry
