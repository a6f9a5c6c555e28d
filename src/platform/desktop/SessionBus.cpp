#include "platform/desktop/SessionBus.h"

#include "platform/SystemLog.h"

#include <QDBusError>
#include <QFileInfo>
#include <QUuid>

#include <chrono>

namespace quarry {

namespace {

constexpr std::chrono::seconds BetweenLooks(2);

/// Empty when there is no bus. Left to itself, the library would start one for a session that has none.
QString addressOfBus()
{
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty())
        return address.startsWith(QLatin1String("autolaunch:")) ? QString() : address;
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString socket = folder + QStringLiteral("/bus");
    return !folder.isEmpty() && QFileInfo::exists(socket) ? QStringLiteral("unix:path=") + socket : QString();
}

} // namespace

SessionBus::SessionBus()
    : _name(QStringLiteral("quarry-") + QUuid::createUuid().toString(QUuid::Id128)), _connection(_name)
{
    _search.setTimerType(Qt::VeryCoarseTimer);
    _search.setInterval(BetweenLooks);
    connect(&_search, &QTimer::timeout, this, &SessionBus::look);
    if (!open())
        _search.start();
}

SessionBus::~SessionBus()
{
    close();
}

bool SessionBus::open()
{
    const QString address = addressOfBus();
    if (address.isEmpty())
        return false;
    _connection = QDBusConnection::connectToBus(address, _name);
    if (!_connection.isConnected()) {
        debugLog(QStringLiteral("no session bus: %1").arg(_connection.lastError().message()));
        close();
        return false;
    }
    _connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                        SLOT(onDisconnected()));
    return true;
}

void SessionBus::close()
{
    QDBusConnection::disconnectFromBus(_name);
    _connection = QDBusConnection(_name);
}

void SessionBus::look()
{
    if (!open())
        return;
    _search.stop();
    Q_EMIT connected();
}

void SessionBus::onDisconnected()
{
    close();
    _search.start();
    Q_EMIT lost();
}

} // namespace quarry
