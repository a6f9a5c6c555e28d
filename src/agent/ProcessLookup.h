#pragma once

#include "platform/ProcessTable.h"

#include <QList>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace quarry {

/// One reading of the process table; none when it could not be read.
using ProcessSnapshot = std::optional<std::vector<ProcessRecord>>;

/// A process that was found by its name.
struct DaemonInfo {
    QString daemonName;         ///< "daemonNameKey": the name sought, cut to 16 characters.
    std::int64_t daemonUID = 0; ///< "daemonUIDKey"
    std::int64_t daemonPID = 0; ///< "daemonPIDKey"
};

/// The processes, of any user, whose command is that name cut to the 16 characters that the table keeps. None rather
/// than an empty list; none also for a null name.
[[nodiscard]] std::optional<QList<DaemonInfo>> processInfoForDaemonNamed(const QString& name,
                                                                         const ProcessSnapshot& processes);

/// How many processes, of any user, have that command, case aside; counted up to 3.
[[nodiscard]] int copiesRunning(const QString& name, const ProcessSnapshot& processes);

} // namespace quarry
