#pragma once

#include "archive/StringTable.h"

#include <QString>

namespace quarry {

/// The title of the refresh item while it counts down: whole minutes below an hour, whole hours below a day. An overdue
/// or imminent refresh reads as 1 minute, and so, on purpose, does one that is a day or more away.
[[nodiscard]] QString countdownTitle(double secondsToGo, const StringTable& texts);

} // namespace quarry
