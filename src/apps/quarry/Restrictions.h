#pragma once

#include "apps/quarry/CommandLine.h"
#include "model/QueryCore.h"

namespace quarry {

/// What makes a query advanced: the values given on the command line.
struct Restrictions {
    std::optional<QString> words; ///< One of wordsModeNames().
    std::optional<QString> site;
    std::optional<QString> urlExpression;
    [[nodiscard]] bool any() const { return words || site || urlExpression; }
};

/// The same with every value known.
struct Restricted {
    qint64 words = 1;
    QString site;
    QString urlExpression;
    [[nodiscard]] bool isNone() const { return words == 1 && site.isEmpty() && urlExpression.isEmpty(); }
    friend bool operator==(const Restricted&, const Restricted&) = default;
};
[[nodiscard]] Restricted restrictionsOf(const QueryCore& query);
/// What was given, and `otherwise` where nothing was.
[[nodiscard]] Restricted given(const Restrictions& restrictions, const Restricted& otherwise = {});

/// Describes --words, --site and --url-regex.
Command& withRestrictions(Command& command, Restrictions& restrictions);
/// An expression that does not compile would end every update of the query without a result.
[[nodiscard]] Outcome faultOfExpression(const Restrictions& restrictions);

/// A combined query; none without texts.
[[nodiscard]] QueryCorePtr combinedQuery(const QStringList& texts, const Restricted& restrictions);

[[nodiscard]] bool isBlank(const QString& text);
[[nodiscard]] bool isAnyBlank(const QStringList& texts);

} // namespace quarry
