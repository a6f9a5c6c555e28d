#include "engines/UrlFilter.h"

#include "text/CSRegex.h"

namespace quarry {

ResultList filterByUrl(const ResultList& records, const QString& pattern)
{
    CSRegex expression(pattern);
    ResultList kept;
    for (const ResultRecord& record : records) {
        const std::optional<QString> address = record.urlText();
        if (address && expression.matchesString(*address))
            kept.append(record);
    }
    return kept;
}

} // namespace quarry
