#pragma once

#include <cstdint>

namespace quarry {

/// Waits, however long that takes, until that process has ended; returns at once when there is none. Another process
/// that gets the same id meanwhile is not waited for. False when that process cannot be watched at all.
[[nodiscard]] bool waitForProcessEnd(std::int64_t processId);

} // namespace quarry
