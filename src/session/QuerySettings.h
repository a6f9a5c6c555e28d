#pragma once

#include "blacklist/BlacklistRule.h"
#include "model/QueryCore.h"

#include <QList>
#include <QString>

namespace quarry {

/// What a query does with its results beside looking for them. A plain value.
struct QuerySettings {
    bool checksBlacklist = true;
    bool keepsDigests = false;
    bool highlights = false;
    QString highlightWords; ///< Empty: the query's own words.
    /// The query's own rules, as the model carries them: what they catch does not come in.
    QList<FilterObject> filters;

    [[nodiscard]] static QuerySettings of(const QueryCore& query);
    [[nodiscard]] bool operator==(const QuerySettings& other) const;
    /// Rules that say the same stay as they are, so this may be applied again, and to another copy of the query.
    void applyTo(QueryCore& query) const;
};

/// Whether the two lists hold rules that say the same, in the same order.
[[nodiscard]] bool areSameFilters(const QList<FilterObject>& a, const QList<FilterObject>& b);

} // namespace quarry
