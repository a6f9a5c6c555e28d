#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

namespace quarry {

/// The desktop's session bus, found again after it was lost or when it comes late. A session without one is no error:
/// it is looked for every few seconds, which costs next to nothing, and none is ever started. Lives on one thread with
/// an event loop; its users live on the same and not longer.
///
/// A connection of its own: whatever else in the program uses the bus is not touched.
class SessionBus final : public QObject {
    Q_OBJECT
public:
    /// The bus that the environment names, or the one of the user's runtime folder.
    SessionBus();
    ~SessionBus() override;

    [[nodiscard]] bool isConnected() const { return _connection.isConnected(); }
    /// Calls on it fail while there is no bus. Not to be kept: after a loss it is another one.
    [[nodiscard]] QDBusConnection& connection() { return _connection; }

Q_SIGNALS:
    /// Also for the second and later times; not for the bus that was there at the start.
    void connected();
    void lost();

private:
    bool open();
    void close();
    void look();
    Q_SLOT void onDisconnected();

    QString _name; ///< Of the connection, within the process.
    QDBusConnection _connection;
    QTimer _search;
};

} // namespace quarry
