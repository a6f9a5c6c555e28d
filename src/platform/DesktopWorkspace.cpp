#include "platform/DesktopWorkspace.h"

#include "platform/Bundle.h"
#include "platform/DetachedProgram.h"
#include "platform/SystemLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <array>

namespace quarry {

namespace {

bool start(const QString& program, const QStringList& arguments)
{
    const bool started = launchDetached(program, arguments);
    if (!started)
        systemLog(QStringLiteral("cannot start %1").arg(program));
    return started;
}

bool startBundle(const QString& bundlePath, const QStringList& arguments)
{
    const QString program = Bundle::at(bundlePath).executable();
    if (program.isEmpty()) {
        systemLog(QStringLiteral("there is no program in %1").arg(bundlePath));
        return false;
    }
    return start(program, arguments);
}

/// Others may start programs with whatever they say.
bool isHarmless(const QString& address)
{
    constexpr std::array Schemes = {"http", "https", "ftp", "mailto", "file"};
    if (address.startsWith(u'/'))
        return true;
    const QString scheme = QUrl(address).scheme();
    return std::any_of(Schemes.begin(), Schemes.end(),
                       [&](const char* allowed) { return scheme == QLatin1String(allowed); });
}

} // namespace

bool DesktopWorkspace::openBundle(const QString& bundlePath)
{
    return startBundle(bundlePath, {});
}

bool DesktopWorkspace::openFile(const QString& path, const QString& bundlePath)
{
    return startBundle(bundlePath, {QFileInfo(path).absoluteFilePath()});
}

bool DesktopWorkspace::openAddress(const QString& address)
{
    return isHarmless(address) && start(QStringLiteral("xdg-open"), {address});
}

bool DesktopWorkspace::launch(const QString& program, const QStringList& arguments)
{
    return start(program, arguments);
}

bool DesktopWorkspace::moveToTrash(const QString& path)
{
    // The Trash lies in a folder that a new user's home folder does not have yet, and is only made inside of it.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    QFile file(QDir::cleanPath(path));
    const bool moved = file.moveToTrash();
    if (!moved)
        systemLog(QStringLiteral("cannot move %1 to the Trash: %2").arg(path, file.errorString()));
    return moved;
}

} // namespace quarry
