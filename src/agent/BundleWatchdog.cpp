#include "agent/BundleWatchdog.h"

#include <QFileInfo>

namespace quarry {

namespace {

constexpr int FirstWithBundleResources = 100600;

} // namespace

bool isBundleInPlace(const QString& bundlePath, int osVersion)
{
    if (osVersion < FirstWithBundleResources)
        return QFileInfo::exists(QFileInfo(bundlePath).path() + QStringLiteral("/English.lproj"));
    const QString resources = bundlePath + QStringLiteral("/Contents/Resources/");
    return QFileInfo::exists(resources + QStringLiteral("English.lproj")) &&
           QFileInfo::exists(resources + QStringLiteral("appicon.icns"));
}

} // namespace quarry
