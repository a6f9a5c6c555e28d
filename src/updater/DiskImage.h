#pragma once

#include "platform/SealedFile.h"
#include "platform/ToolProgram.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace quarry {

/// The system's disk-image tool, or what stands in for it. Called from the install's thread.
class DiskImageTool {
public:
    virtual ~DiskImageTool() = default;
    /// Runs the tool and waits for its end. An image that is handed over is its ToolProgram::passedFile(). Answers its
    /// exit status, -1 when it did not run.
    virtual int run(const QStringList& arguments, const SealedFile* image) = 0;
};

/// "/usr/bin/hdiutil" where it exists, else the helper in the product's bundle, which is kept open: the bundle is moved
/// while it is in use.
[[nodiscard]] std::unique_ptr<DiskImageTool> makeDiskImageTool(const QString& bundlePath);

/// Attaches an image read-only at a folder that must not be there yet; returns the folder, or nothing when that failed.
/// With `sealed` its bytes are used and the path is only a name. A folder that an interrupted install left is cleared
/// away first; one that is there although the tool failed is somebody else's.
[[nodiscard]] QString mountDMGFile(DiskImageTool& tool, const QString& path, const SealedFile* sealed,
                                   const QString& folder);

/// Nothing happens for an empty mount point.
void unmountDiskImage(DiskImageTool& tool, const QString& mountPoint);

} // namespace quarry
