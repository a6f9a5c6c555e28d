#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QUuid>
#include <QVariantMap>

#include <utility>

namespace quarry::test {

/// A notification server on the session bus that the environment names. Not a picture of any real one: it answers, it
/// writes down what it was told, and it does what the test says.
class NotificationServer final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    struct Shown {
        uint id = 0;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
    };

    explicit NotificationServer(QStringList capabilities, uint firstId = 1)
        : _capabilities(std::move(capabilities)), _nextId(firstId),
          _name(QStringLiteral("server-") + QUuid::createUuid().toString(QUuid::Id128)),
          _connection(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), _name))
    {
        _connection.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                                   QDBusConnection::ExportAllSlots);
        _connection.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }
    ~NotificationServer() override
    {
        _connection.unregisterService(QStringLiteral("org.freedesktop.Notifications"));
        QDBusConnection::disconnectFromBus(_name);
    }

    QList<Shown> shown;        ///< Everything it was ever asked to show.
    QList<uint> closed;        ///< Everything it was asked to close.
    bool closesAtOnce = false; ///< Tells that a notification is closed before it tells its number.

    void click(uint id, const QString& action = QStringLiteral("default"))
    {
        tell(QStringLiteral("ActionInvoked"), {id, action});
    }
    void close(uint id) { tell(QStringLiteral("NotificationClosed"), {id, 2U}); }

public Q_SLOTS:
    QStringList GetCapabilities() const { return _capabilities; }
    uint Notify(const QString&, uint, const QString&, const QString& summary, const QString& body,
                const QStringList& actions, const QVariantMap& hints, int)
    {
        shown.append({_nextId, summary, body, actions, hints});
        if (closesAtOnce)
            close(_nextId);
        return _nextId++;
    }
    void CloseNotification(uint id)
    {
        closed.append(id);
        tell(QStringLiteral("NotificationClosed"), {id, 3U});
    }

private:
    void tell(const QString& signal, const QVariantList& arguments)
    {
        QDBusMessage message = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/Notifications"),
                                                          QStringLiteral("org.freedesktop.Notifications"), signal);
        message.setArguments(arguments);
        _connection.send(message);
    }

    QStringList _capabilities;
    uint _nextId;
    QString _name;
    QDBusConnection _connection;
};

} // namespace quarry::test
