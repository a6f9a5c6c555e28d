#pragma once

#include "engines/SearchService.h"
#include "model/ResultRecord.h"

#include <array>

namespace quarry {

/// What each service brought, in the order of SearchService.
using ServiceLists = std::array<ResultList, AllSearchServices.size()>;

/// One list by rank: every service's first result, then every service's second, and so on. A list that is used up
/// leaves its turns to the others.
[[nodiscard]] ResultList interleaved(const ServiceLists& lists);

/// The first record of each address, in order. Records without an address are all kept: nothing says that they are
/// the same.
[[nodiscard]] ResultList arrayWithUniqueItem(const ResultList& records);

} // namespace quarry
