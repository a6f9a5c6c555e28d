#pragma once

#include <QString>

namespace quarry {

/// Whether the agent's bundle is still there. It is not when the application was deleted or is being replaced.
[[nodiscard]] bool isBundleInPlace(const QString& bundlePath, int osVersion);

} // namespace quarry
