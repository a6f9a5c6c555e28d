#pragma once

#include <QString>

namespace quarry {

/// Why no program with a window can be started from here: one line for a person. Empty when nothing speaks against it.
[[nodiscard]] QString whyNoScreen();

/// The same for the session bus, without which programs and notifications do not reach each other.
[[nodiscard]] QString whyNoSessionBus();

} // namespace quarry
