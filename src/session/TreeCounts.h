#pragma once

#include "model/QueryCore.h"

#include <QHash>
#include <QString>
#include <QStringList>

namespace quarry {

/// What badges show: counted once a query when the tree comes, then again only for the queries that change; folders
/// hold the sums of everything below them. A plain value, cheap to copy.
class TreeCounts final {
public:
    struct Counts {
        qint64 unread = 0;
        qint64 results = 0;
        qint64 hidden = 0;
        qint64 fresh = 0; ///< Brought by the latest update.

        Counts& operator+=(const Counts& other);
        bool operator==(const Counts&) const = default;
    };

    TreeCounts() = default;
    explicit TreeCounts(const QueryCorePtr& root);

    /// Zeros for a node that is not known.
    [[nodiscard]] Counts of(const QString& uuid) const { return _counts.value(uuid); }

    /// Counts these queries again, and the folders above them.
    void update(const QueryCorePtr& root, const QStringList& queries);
    /// As update, after nodes came, went or moved.
    void updateStructure(const QueryCorePtr& root, const QStringList& queries);

private:
    Counts addUp(const QueryCorePtr& node);

    QHash<QString, Counts> _counts;
    QHash<QString, Counts> _ofQueries;
};

} // namespace quarry
