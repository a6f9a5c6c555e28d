#pragma once

#include <QMap>
#include <QString>

#include <functional>
#include <memory>

namespace quarry {

/// Notifications between the processes of one user's session: a name and a few texts. A poster receives its own, too.
/// Without a session bus nothing is delivered, and that is no error. Main thread only.
class DistributedNotifications {
public:
    using UserInfo = QMap<QString, QString>;
    using Observer = std::function<void(const UserInfo& userInfo)>;

    virtual ~DistributedNotifications() = default;
    /// Delivered at once, not when the poster's event loop comes round.
    virtual void post(const QString& name, const UserInfo& userInfo = {}) = 0;
    /// The observer is called on the main thread, from the event loop, until the centre goes away.
    virtual void addObserver(const QString& name, Observer observer) = 0;
};

} // namespace quarry
