#include "updater/NewBundle.h"

#include "archive/PropertyList.h"
#include "updater/VersionComparison.h"

#include <QFile>
#include <QFileInfo>

namespace quarry {

namespace {

/// Left on the disk beside the new bundle.
constexpr std::int64_t spareBytes = std::int64_t{16} << 20;

bool isComplete(const QString& bundle, const PlistValue& info)
{
    const QString program = info[QStringLiteral("CFBundleExecutable")].text().value_or(QString());
    const QString contents = bundle + QStringLiteral("/Contents/");
    return !program.isEmpty() && !program.contains(u'/') &&
           QFileInfo(contents + QStringLiteral("bin/") + program).isExecutable() &&
           QFileInfo(contents + QStringLiteral("Resources/English.lproj")).isDir();
}

} // namespace

InstallFault faultOfNewBundle(const QString& bundle, const QString& installedPath, const QString& runningVersion,
                              const BundleFiles& files)
{
    QFile file(bundle + QStringLiteral("/Contents/Info.plist"));
    if (QFileInfo(bundle).isSymLink() || !file.open(QIODevice::ReadOnly))
        return InstallFault::Incomplete;
    const PlistValue info = readPropertyList(file.readAll()).value_or(PlistValue());
    const QString version = info[QStringLiteral("CFBundleVersion")].text().value_or(QString());
    if (version.isEmpty() || !isComplete(bundle, info))
        return InstallFault::Incomplete;
    if (!isNewerVersion(version, runningVersion))
        return InstallFault::NotNewer;
    const QString parent = QFileInfo(installedPath).path();
    if (!files.isWritable(parent))
        return InstallFault::NotInstalled;
    return files.size(bundle) + spareBytes > files.freeSpace(parent) ? InstallFault::NoSpace : InstallFault::None;
}

} // namespace quarry
