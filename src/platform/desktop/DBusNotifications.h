#pragma once

#include "platform/DistributedNotifications.h"

#include <QDBusMessage>
#include <QMap>
#include <QObject>

#include <vector>

namespace quarry {

class SessionBus;

/// Notifications as signals on the session bus: "com.zep.QuarrySpotter.Notifications.Posted", whose arguments are the
/// name and the user-info. A bus that went and came again is listened to again. Lives on the bus's thread.
class DBusNotifications final : public QObject, public DistributedNotifications {
    Q_OBJECT
public:
    explicit DBusNotifications(SessionBus& bus);

    /// Waits until the bus has taken it over, at most half a second, so that the caller may end right away.
    void post(const QString& name, const UserInfo& userInfo = {}) override;
    void addObserver(const QString& name, Observer observer) override;

private:
    void listen();
    void listenTo(const QString& name);
    Q_SLOT void received(const QDBusMessage& message);

    SessionBus& _bus;
    QMap<QString, std::vector<Observer>> _observers; ///< By name.
};

} // namespace quarry
