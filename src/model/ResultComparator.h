#pragma once

#include "model/ResultRecord.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace quarry {

/// The orders in which results can be listed. Stored and handed around as their number; any other number is taken
/// as it is and has an order of its own (see compareResults).
enum ResultOrder : std::int32_t {
    OldestFirst = 1,
    NewestFirst = 2,
    ByRank = 3, ///< Lowest rank first; newest first when either has none. The default.
    UnreadFirst = 4,
    ByAddress = 5,
    ByTitle = 6,
    ByRating = 7, ///< Highest first, unrated ones after them, newest first.
};

/// Negative when a comes before b, positive when after, 0 when neither.
///
/// A missing value on either side makes a comparison answer 0, and some orders fall back to another value when one
/// is missing, so this is no strict weak order: never hand it to std::sort. Texts compare by their UTF-16 units.
[[nodiscard]] int compareResults(const ResultRecord& a, const ResultRecord& b, std::int32_t order);

/// Sorts by compareResults: stable, always ends, and answers the same for the same list. A list that is in order
/// already, neighbour by neighbour, is not touched (nor detached). Returns whether anything moved.
bool sortResults(ResultList& results, std::int32_t order);

/// Where each place of the sorted list finds its result in this one; the list stays as it is. Empty when `cancelled`
/// (may be null) becomes true meanwhile.
[[nodiscard]] std::vector<std::uint32_t> sortedPlaces(const ResultList& results, std::int32_t order,
                                                      const std::atomic<bool>* cancelled = nullptr);

} // namespace quarry
