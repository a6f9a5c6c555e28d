#pragma once

#include <QString>

namespace quarry {

/// The absolute path of the running program's file, links resolved; empty when it cannot be told.
[[nodiscard]] QString runningProgramFile();

} // namespace quarry
