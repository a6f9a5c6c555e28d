#pragma once

#include <QString>

namespace quarry {

/// Waits until everything that was written to the file system of that path is on the disk. False when that failed.
[[nodiscard]] bool syncFileSystem(const QString& path);

} // namespace quarry
