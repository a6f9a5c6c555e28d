#pragma once

#include "platform/UserNotificationCenter.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <functional>
#include <optional>

namespace quarry {

class SessionBus;

/// User notifications through the desktop's notification server ("org.freedesktop.Notifications"). The server is asked
/// what it can show, and gets the texts to match. Lives on the bus's thread.
class DesktopNotifications final : public QObject, public UserNotificationCenter {
    Q_OBJECT
public:
    /// How the program presents itself.
    struct Sender {
        QString name;       ///< For the user.
        QString icon;       ///< A name of the icon theme or an absolute path; may be empty.
        QString desktopId;  ///< The program's .desktop file without its ending.
        QString openAction; ///< What a click does, for servers that write it out.
    };

    DesktopNotifications(SessionBus& bus, Sender sender);
    /// Takes its notifications away: nobody would hear a click on them, and the program's next run would not know them.
    ~DesktopNotifications() override;

    void deliver(const UserNotification& notification) override;
    [[nodiscard]] QList<Identifier> delivered() const override { return _delivered; }
    void remove(Identifier notification) override;
    /// Also those that are on their way to the server.
    void removeAllDelivered() override;
    void setActivationHandler(std::function<void(Identifier)> handler) override { _onActivation = std::move(handler); }

private:
    /// Current: from the server that is known now, not from an earlier one.
    using Reply = std::function<void(const QDBusMessage& reply, bool isCurrent)>;

    void listen();
    void forgetServer();
    void askCapabilities();
    void sendWaiting();
    void send(const UserNotification& notification);
    void sent(const QDBusMessage& reply, unsigned round);
    void close(Identifier notification);
    void call(const QString& method, const QVariantList& arguments, Reply reply);
    [[nodiscard]] bool isFromServer(const QDBusMessage& message) const;

    Q_SLOT void onOwnerChanged(const QDBusMessage& message);
    Q_SLOT void onClosed(const QDBusMessage& message);
    Q_SLOT void onAction(const QDBusMessage& message);

    SessionBus& _bus;
    Sender _sender;
    std::function<void(Identifier)> _onActivation;
    std::optional<QStringList> _capabilities; ///< Of the server that is there now, once it has told them.
    bool _isAsking = false;
    QList<UserNotification> _waiting; ///< For the capabilities.
    QString _server;                  ///< The server's own name on the bus: numbers are meant for it alone.
    QList<Identifier> _delivered;
    QSet<Identifier> _closedEarly; ///< Closed before the server's answer told that they are ours.
    int _onTheirWay = 0;           ///< Sent, without an answer yet.
    unsigned _round = 0;           ///< Counts removals: what was sent before the last is not wanted any more.
    unsigned _serverCount = 0;     ///< Counts servers: answers of an earlier one mean nothing.
};

} // namespace quarry
