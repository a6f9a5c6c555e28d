#pragma once

#include "archive/StringTable.h"
#include "engines/ServiceHealth.h"

#include <QString>

namespace quarry {

// How a service is doing, in the user's language. Reasons that a server gave stay as it gave them.

/// One or two words: "results", "blocked".
[[nodiscard]] QString verdictWords(const StringTable& texts, ServiceVerdict verdict);
/// With the reason and how many pages it holds for: "blocked (HTTP status 429; 3 of 8 pages)".
[[nodiscard]] QString healthWords(const StringTable& texts, const ServiceHealth& health);

} // namespace quarry
