#include "agent/DesktopSession.h"

#include <QFileInfo>

namespace quarry {

namespace {

bool isGiven(const char* variable)
{
    return !qEnvironmentVariableIsEmpty(variable);
}

} // namespace

QString whyNoScreen()
{
    if (isGiven("DISPLAY") || isGiven("WAYLAND_DISPLAY") || isGiven("QT_QPA_PLATFORM"))
        return {};
    return QStringLiteral("there is no desktop session here: neither DISPLAY nor WAYLAND_DISPLAY is set");
}

QString whyNoSessionBus()
{
    const QString socket = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus");
    if (isGiven("DBUS_SESSION_BUS_ADDRESS") || (isGiven("XDG_RUNTIME_DIR") && QFileInfo::exists(socket)))
        return {};
    return QStringLiteral("there is no session bus here: DBUS_SESSION_BUS_ADDRESS is not set");
}

} // namespace quarry
