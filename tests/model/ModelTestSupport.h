#pragma once

#include "model/QueryCore.h"
#include "support/QtPrinting.h"

#include <gtest/gtest.h>

namespace quarry {

inline QString operator""_q(const char* text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<qsizetype>(size));
}

inline ResultRecord recordAt(const QString& address)
{
    return ResultRecord().withUrl(Url::fromStored(address));
}

/// A record told from others by its "link uuid key".
inline ResultRecord recordNamed(const QString& name)
{
    return recordAt("http://"_q + name + ".example/"_q).withTitle(name).withLinkUuid(name);
}

/// A query that holds these visible records.
inline QueryCorePtr queryWith(const ResultList& records)
{
    QueryCorePtr node = QueryCore::initWithQuery("words"_q);
    EXPECT_TRUE(node->replaceResultsIfUnchanged(node->snapshot().generation, records, Date(1)));
    return node;
}

/// The titles of a list, joined with blanks.
inline QString titlesOf(const std::optional<ResultList>& records)
{
    QStringList titles;
    for (const ResultRecord& record : records.value_or(ResultList()))
        titles << record.title().value_or("-"_q);
    return titles.join(u' ');
}

} // namespace quarry
