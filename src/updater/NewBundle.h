#pragma once

#include "updater/BundleFiles.h"
#include "updater/ProductInfo.h"

#include <QString>

namespace quarry {

/// Why an install ended without the new version.
enum class InstallFault {
    None,
    NotMounted,   ///< The image cannot be mounted.
    Untrusted,    ///< Its signature does not verify, or it comes from nowhere one can trust.
    NotNewer,     ///< What it holds is not newer than what runs.
    Incomplete,   ///< It holds no bundle of that name, or one with parts missing.
    NoSpace,      ///< The new bundle does not fit on the disk.
    NotInstalled, ///< It could not be copied into place; the old one is there again.
    Stopped,      ///< The user gave up.
};

/// Looks at the bundle in a mounted image before anything is touched: it is complete, newer than the running version,
/// and fits where `installedPath` lies.
[[nodiscard]] InstallFault faultOfNewBundle(const QString& bundle, const QString& installedPath,
                                            const QString& runningVersion, const BundleFiles& files);

} // namespace quarry
