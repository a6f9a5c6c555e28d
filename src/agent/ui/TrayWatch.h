#pragma once

#include <QObject>

#include <functional>
#include <memory>

class QDBusServiceWatcher;

namespace quarry {

class TrayWindow;

/// Waits for the desktop's status bar. Qt asks for one when the first icon is made and remembers the answer, so a bar
/// that comes later (at login) must be there before Qt is asked; this looks on the session bus and the X11 screen
/// itself. Nothing here waits for an answer. Main thread only.
class TrayWatch final : public QObject {
    Q_OBJECT

public:
    enum class Kind {
        Bus,    ///< The bar takes icon and menu over D-Bus and draws them itself.
        Window, ///< The bar gives us a window in it.
    };

    TrayWatch();
    ~TrayWatch() override;

    /// Calls `found` once, from the event loop; a bar on the bus goes before one on the screen.
    void start(std::function<void(Kind)> found);

private Q_SLOTS:
    /// Asks the bus and, when it says no, the screen.
    void look();

private:
    void watchBus();
    void lookAtScreen();
    void finish(Kind kind);

    std::function<void(Kind)> _found;
    std::unique_ptr<QDBusServiceWatcher> _bus;
    std::unique_ptr<TrayWindow> _screen;
};

} // namespace quarry
