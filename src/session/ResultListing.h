#pragma once

#include "model/QueryCore.h"
#include "model/ResultRecord.h"

#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace quarry {

/// The results of a query, or of everything below a folder, in one order: what a list on the screen shows. Made from
/// snapshots, so the tree goes on changing meanwhile and none of it is copied but handles. A plain value, whose copies
/// share their rows; making one of a large folder, or letting go of the last copy, takes a while and belongs on another
/// thread.
class ResultListing final {
public:
    struct Row {
        ResultRecord record;
        std::uint32_t query = 0; ///< Index in queries().
    };
    /// Set from another thread when nobody waits for the answer any more; what comes back then is empty.
    using Cancelled = std::atomic<bool>;

    ResultListing() = default;
    /// `order` as in ResultComparator.h. Only results that were not hidden, or only the hidden ones.
    static ResultListing of(const QueryCorePtr& node, std::int32_t order, bool hidden,
                            const Cancelled* cancelled = nullptr);
    /// Those that the interactive search finds, in the same order; all for an empty text.
    [[nodiscard]] ResultListing filtered(const QString& search, const Cancelled* cancelled = nullptr) const;

    [[nodiscard]] std::size_t size() const { return _rows ? _rows->size() : 0; }
    [[nodiscard]] const Row& row(std::size_t place) const { return _rows->at(place); }
    /// The UUIDs of the queries that were listed.
    [[nodiscard]] const QStringList& queries() const { return _queries; }
    [[nodiscard]] const QString& queryUuid(const Row& row) const { return _queries.at(qsizetype(row.query)); }
    /// The place of the result that goes by that key (ResultKeys) in that query; -1 when it is not listed.
    [[nodiscard]] std::ptrdiff_t placeOf(const QString& queryUuid, const QString& key) const;

private:
    using Rows = std::vector<Row>;

    std::shared_ptr<const Rows> _rows; ///< None: no rows.
    QStringList _queries;
};

} // namespace quarry
