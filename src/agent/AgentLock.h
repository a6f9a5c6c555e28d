#pragma once

#include "platform/FileLock.h"
#include "platform/HomeFolder.h"

#include <cstdint>
#include <optional>

namespace quarry {

/// What makes an agent the one of its home folder. Of two that start at the same instant and see each other in the
/// process table, the one that holds the lock stays.
class AgentLock final {
public:
    enum class Outcome {
        Taken,
        HeldByAnother, ///< Another agent of this home folder runs.
        Unavailable    ///< The lock cannot be had; nothing is known of other agents.
    };

    /// Takes the lock for as long as this object lives, and notes the process in it for others to find.
    [[nodiscard]] Outcome take(const HomeFolder& home, std::int64_t ownProcessId);

    /// The agent that holds the lock of that home folder; none when none does. 0 for one that has not noted itself.
    [[nodiscard]] static std::optional<std::int64_t> holder(const HomeFolder& home);
    /// Waits, at most that long, until no agent holds it. False when one still does.
    [[nodiscard]] static bool waitUntilFree(const HomeFolder& home, std::chrono::milliseconds timeout);

private:
    std::optional<FileLock> _lock;
};

} // namespace quarry
