#pragma once

#include "database/Schedule.h"

#include <QString>

#include <optional>

namespace quarry {

/// What the agent takes from the schedule file when it starts. Changes to the file are seen at its next start.
struct AgentSchedule {
    bool exists = false;
    bool automatic = false;         ///< False also where the file makes no sense.
    qint64 periodicity = 1800;      ///< Seconds between two refreshes: a minute to a million of them.
    std::optional<Date> lastUpdate; ///< None also for a date more than a day ahead: the clock was wrong then.
    bool checkForUpdates = true;
    QString fault; ///< Why the file could not be used: one line for a person. Else empty.

    [[nodiscard]] static AgentSchedule read(const Schedule& schedule, Date now);
    /// When the first refresh is due: at once where none was made yet or one is overdue.
    [[nodiscard]] Date firstLaunch(Date now) const;
};

} // namespace quarry
