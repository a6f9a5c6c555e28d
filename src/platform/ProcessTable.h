#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace quarry {

/// One process of the machine, of whichever user.
struct ProcessRecord {
    QString command; ///< The name of the program's file, cut to 16 characters.
    std::int64_t processId = 0;
    std::int64_t userId = 0;
    /// Another user's process whose program file cannot be read: `command` comes from the kernel's own field, which
    /// keeps 15 characters, and is compared over that length.
    bool commandIsShortened = false;
};

/// The processes that run now, read in one go; those that have ended and merely wait to be collected are none.
/// Implementations are used on one thread.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;
    /// Nothing when the table cannot be read.
    [[nodiscard]] virtual std::optional<std::vector<ProcessRecord>> processes() = 0;
    /// Sends the interrupt signal; false when there is no such process or it may not be signalled.
    virtual bool interrupt(std::int64_t processId) = 0;
    /// Asks it to end (SIGTERM); same answer.
    virtual bool terminate(std::int64_t processId) = 0;
    /// The process that asks.
    [[nodiscard]] virtual std::int64_t ownProcessId() const = 0;
};

} // namespace quarry
