#include "agent/NewResultsText.h"

#include "text/LocalisedFormat.h"

#include <algorithm>

namespace quarry {

InfoText newResultsText(const QList<QuerySummary>& queries, const StringTable& texts)
{
    const QString several = texts.text(QStringLiteral("113_Template string for queries result"));
    const QString one = texts.text(QStringLiteral("113_Template string for queries result Singular form"));
    InfoText info;
    info.heading = texts.text(QStringLiteral("113_New Queries Results"));
    for (const QuerySummary& query : queries) {
        if (query.nbNewItems <= 0)
            continue;
        const QString line = filledFormat(query.nbNewItems == 1 ? one : several, {query.nbNewItems, query.title});
        info.lines.push_back({line, std::min(query.title.size(), line.size())});
    }
    return info;
}

} // namespace quarry
