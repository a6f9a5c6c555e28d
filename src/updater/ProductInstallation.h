#pragma once

#include "platform/HomeFolder.h"
#include "platform/Workspace.h"
#include "updater/InstallationParts.h"

#include <QString>

#include <functional>

namespace quarry {

/// What an install works with in a real program: the disk, the network, the user's Downloads.
class ProductInstallation final {
public:
    /// `bundlePath` is "…/QuarrySpotter.app"; `workspace` outlives the object. The others as in InstallationParts.
    ProductInstallation(const HomeFolder& home, const QString& bundlePath, Workspace& workspace,
                        std::function<void()> terminate, std::function<bool(const QString&)> relaunch);
    ProductInstallation(const ProductInstallation&) = delete;
    ProductInstallation& operator=(const ProductInstallation&) = delete;

    [[nodiscard]] InstallationParts& parts() { return _parts; }

private:
    DiskBundleFiles _files;
    InstallationParts _parts;
};

/// Has the new bundle's helper open it once this process has ended. False when it cannot be started.
[[nodiscard]] bool openAfterThisProcess(Workspace& workspace, const QString& bundlePath);

} // namespace quarry
