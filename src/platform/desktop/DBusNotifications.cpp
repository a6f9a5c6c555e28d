#include "platform/desktop/DBusNotifications.h"

#include "platform/SystemLog.h"
#include "platform/desktop/SessionBus.h"

#include <QDBusArgument>
#include <QDBusMetaType>

namespace quarry {

namespace {

const QLatin1String Path("/com/zep/QuarrySpotter/Notifications");
const QLatin1String Interface("com.zep.QuarrySpotter.Notifications");
const QLatin1String Member("Posted");
const QLatin1String Signature("sa{ss}");
constexpr int LongestFlush = 500; // milliseconds

/// A question that every bus answers at once. The answer shows that what was sent before has gone out.
QDBusMessage anyQuestion()
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"));
}

} // namespace

DBusNotifications::DBusNotifications(SessionBus& bus) : _bus(bus)
{
    qDBusRegisterMetaType<UserInfo>();
    connect(&bus, &SessionBus::connected, this, &DBusNotifications::listen);
}

void DBusNotifications::post(const QString& name, const UserInfo& userInfo)
{
    QDBusMessage signal = QDBusMessage::createSignal(Path, Interface, Member);
    signal.setArguments({name, QVariant::fromValue(userInfo)});
    if (!_bus.isConnected() || !_bus.connection().send(signal)) {
        debugLog(QStringLiteral("nobody is told of %1: there is no session bus").arg(name));
        return;
    }
    _bus.connection().call(anyQuestion(), QDBus::Block, LongestFlush);
}

void DBusNotifications::addObserver(const QString& name, Observer observer)
{
    std::vector<Observer>& observers = _observers[name];
    if (observers.empty())
        listenTo(name);
    observers.push_back(std::move(observer));
}

void DBusNotifications::listen()
{
    for (auto i = _observers.cbegin(); i != _observers.cend(); ++i)
        listenTo(i.key());
}

void DBusNotifications::listenTo(const QString& name)
{
    _bus.connection().connect(QString(), Path, Interface, Member, {name}, Signature, this,
                              SLOT(received(QDBusMessage)));
}

void DBusNotifications::received(const QDBusMessage& message)
{
    if (message.signature() != Signature)
        return;
    const QVariantList arguments = message.arguments();
    const auto userInfo = qdbus_cast<UserInfo>(arguments.at(1));
    const std::vector<Observer> observers = _observers.value(arguments.at(0).toString());
    for (const Observer& observer : observers)
        observer(userInfo);
}

} // namespace quarry
