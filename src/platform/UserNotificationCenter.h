#pragma once

#include <QList>
#include <QString>

#include <cstdint>
#include <functional>

namespace quarry {

/// What the user is shown: plain texts; markup characters in them are the implementation's care.
struct UserNotification {
    QString title;
    QString informativeText;
};

/// The desktop's notifications of this program. A notification server that is missing or restarts is no error: nothing
/// is delivered then. Calls never wait for the server; what it says arrives later. Main thread only.
class UserNotificationCenter {
public:
    using Identifier = std::uint32_t;

    virtual ~UserNotificationCenter() = default;
    virtual void deliver(const UserNotification& notification) = 0;
    /// Those of this program that were delivered and neither closed nor clicked, as far as is known.
    [[nodiscard]] virtual QList<Identifier> delivered() const = 0;
    virtual void remove(Identifier notification) = 0;
    virtual void removeAllDelivered() = 0;
    /// Called from the event loop when the user clicked one.
    virtual void setActivationHandler(std::function<void(Identifier)> handler) = 0;
};

} // namespace quarry
