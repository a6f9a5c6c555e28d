#pragma once

#include "platform/Workspace.h"

#include <QString>

namespace quarry {

/// Opens a terminal with what `quarry list` of that bundle says, until a key is pressed. False when the user's desktop
/// has no terminal, or the bundle no `quarry`.
[[nodiscard]] bool listInTerminal(Workspace& workspace, const QString& mainApplication);

} // namespace quarry
