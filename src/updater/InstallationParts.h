#pragma once

#include "platform/Workspace.h"
#include "updater/BundleFiles.h"
#include "updater/DiskImage.h"
#include "updater/UpdateDownloader.h"

#include <QString>

#include <functional>
#include <memory>

namespace quarry {

/// What download and install work with, besides what every updater has. The referenced parts outlive the updater.
struct InstallationParts {
    Workspace& workspace;
    BundleFiles& files; ///< Used by one thread at a time.
    /// Made when an install begins.
    std::function<std::unique_ptr<DiskImageTool>()> makeTool;
    std::function<std::shared_ptr<UpdateDownloader>()> makeDownloader;
    QString downloadsFolder; ///< "Downloads" in the home folder.
    /// Where images are mounted.
    QString mountParent = QStringLiteral("/tmp");
    /// Ends the program, once the new version was started.
    std::function<void()> terminate;
    /// Starts the new version of the running program when this one has ended: opened at once, the bundle would only
    /// bring the old one to the front. Answers false when that failed; empty in a program that is not the bundle's own,
    /// which opens it.
    std::function<bool(const QString& bundlePath)> relaunch;
};

} // namespace quarry
