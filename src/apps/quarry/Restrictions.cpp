#include "apps/quarry/Restrictions.h"

#include "apps/quarry/ExpressionFault.h"
#include "exchange/Names.h"

#include <algorithm>

namespace quarry {

Restricted restrictionsOf(const QueryCore& query)
{
    return {query.wordsRestriction().value_or(1), query.websiteRestriction(), query.urlRegularExpressions()};
}

Restricted given(const Restrictions& restrictions, const Restricted& otherwise)
{
    return {restrictions.words ? wordsModeNamed(*restrictions.words).value_or(1) : otherwise.words,
            restrictions.site.value_or(otherwise.site), restrictions.urlExpression.value_or(otherwise.urlExpression)};
}

Command& withRestrictions(Command& command, Restrictions& restrictions)
{
    return command
        .choice(QStringLiteral("--words"), restrictions.words, wordsModeNames(),
                QStringLiteral("any: in any order; exact: side by side; in-page: side by side, looked up in each page"))
        .option(QStringLiteral("--site"), QStringLiteral("HOST"), restrictions.site,
                QStringLiteral("Results of one web site only"))
        .option(QStringLiteral("--url-regex"), QStringLiteral("EXPRESSION"), restrictions.urlExpression,
                QStringLiteral("Results whose address this POSIX extended expression matches"));
}

Outcome faultOfExpression(const Restrictions& restrictions)
{
    if (!restrictions.urlExpression || restrictions.urlExpression->isEmpty())
        return Outcome::done();
    if (const auto fault = expressionFault(*restrictions.urlExpression))
        return Outcome::wrongUse(QStringLiteral("--url-regex: ") + *fault);
    return Outcome::done();
}

QueryCorePtr combinedQuery(const QStringList& texts, const Restricted& with)
{
    QueryCorePtr node = QueryCore::initWithAdvancedCombinedQuery(texts, with.words, with.site);
    if (node && !with.urlExpression.isEmpty())
        node->changeWithCombinedQuery(texts, with.words, with.site, with.urlExpression);
    return node;
}

bool isBlank(const QString& text)
{
    return text.trimmed().isEmpty();
}

bool isAnyBlank(const QStringList& texts)
{
    return std::any_of(texts.begin(), texts.end(), isBlank);
}

} // namespace quarry
