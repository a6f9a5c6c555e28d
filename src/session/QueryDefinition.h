#pragma once

#include "model/QueryCore.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace quarry {

/// What a query looks for, as a form holds it. A plain value.
struct QueryDefinition {
    /// What its restrictions do with the words, as the model counts them.
    static constexpr qint64 AnyOrder = 1;
    static constexpr qint64 SideBySide = 2;
    static constexpr qint64 InPage = 3;

    bool isCombined = false;
    QString name;      ///< The user's title; empty: it is called by its words.
    QStringList texts; ///< The words: one text, of a combined query several.
    qint64 words = AnyOrder;
    QString site;
    QString urlExpression;

    [[nodiscard]] static QueryDefinition of(const QueryCore& query);
    [[nodiscard]] bool isRestricted() const { return words != AnyOrder || !site.isEmpty() || !urlExpression.isEmpty(); }
    /// Whether the same results are looked for; the names may differ.
    [[nodiscard]] bool looksForTheSame(const QueryDefinition& other) const;
    /// A new node; none when there are no words.
    [[nodiscard]] QueryCorePtr makeNode() const;
};

/// A change of a query's definition, and what takes it back. Both state what is to be, so they may be applied again.
struct QueryRedefinition {
    std::function<void(QueryCore& node)> change;
    std::function<void(QueryCore& node)> opposite;
};

/// The change from what the query is now. The results stay until the next refresh, which asks the services again
/// however recent the last one was.
[[nodiscard]] QueryRedefinition redefinition(const QueryCore& query, const QueryDefinition& wanted);

/// The next refresh asks the services again. The model's own mark for that lives in memory only, so for another
/// program the date has to say it.
void forgetLastUpdate(QueryCore& query);

} // namespace quarry
