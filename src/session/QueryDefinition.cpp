#include "session/QueryDefinition.h"

namespace quarry {

namespace {

void setDate(QueryCore& query, Date date)
{
    const QueryCore::Snapshot now = query.snapshot();
    [[maybe_unused]] const bool swapped =
        query.replaceResultsIfUnchanged(now.generation, now.fields._currentResult.value_or(ResultList()), date);
}

void define(QueryCore& query, const QueryDefinition& as)
{
    if (as.isCombined)
        query.changeWithCombinedQuery(as.texts, as.words, as.site, as.urlExpression);
    else
        query.changeWithQuery(as.texts.value(0), as.words, as.site, as.urlExpression);
}

std::optional<QString> unlessEmpty(const QString& text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

} // namespace

QueryDefinition QueryDefinition::of(const QueryCore& query)
{
    QueryDefinition definition;
    definition.isCombined = query.isCombinedQuery();
    definition.name = query.snapshot().fields._title.value_or(QString());
    definition.texts =
        definition.isCombined ? query.combinedQueries().value_or(QStringList()) : QStringList{query.query()};
    const qint64 words = query.wordsRestriction().value_or(AnyOrder);
    definition.words = words == SideBySide || words == InPage ? words : AnyOrder;
    definition.site = query.websiteRestriction();
    definition.urlExpression = query.urlRegularExpressions();
    return definition;
}

bool QueryDefinition::looksForTheSame(const QueryDefinition& other) const
{
    return texts == other.texts && words == other.words && site == other.site && urlExpression == other.urlExpression;
}

QueryCorePtr QueryDefinition::makeNode() const
{
    QueryCorePtr node;
    if (isCombined) {
        node = QueryCore::initWithAdvancedCombinedQuery(texts, words, site);
        if (node && !urlExpression.isEmpty())
            node->changeWithCombinedQuery(texts, words, site, urlExpression);
    } else {
        node = isRestricted() ? QueryCore::initWithAdvancedQuery(texts.value(0), words, site, urlExpression)
                              : QueryCore::initWithQuery(texts.value(0));
    }
    if (node)
        node->setTitle(unlessEmpty(name));
    return node;
}

QueryRedefinition redefinition(const QueryCore& query, const QueryDefinition& wanted)
{
    const QueryDefinition former = QueryDefinition::of(query);
    const Date formerDate = query.date().value_or(Date::reference());
    const bool isSame = wanted.looksForTheSame(former);
    const auto rename = [](const QString& name) {
        return [name](QueryCore& node) { node.setTitle(unlessEmpty(name)); };
    };
    if (isSame)
        return {rename(wanted.name), rename(former.name)};
    return {[wanted, rename](QueryCore& node) {
                define(node, wanted);
                forgetLastUpdate(node);
                rename(wanted.name)(node);
            },
            [former, formerDate, rename](QueryCore& node) {
                define(node, former);
                // Nothing was looked for meanwhile: its results are as old as they were. Else they are another's.
                setDate(node, node.date() == Date::reference() ? formerDate : Date::reference());
                rename(former.name)(node);
            }};
}

void forgetLastUpdate(QueryCore& query)
{
    setDate(query, Date::reference());
}

} // namespace quarry
