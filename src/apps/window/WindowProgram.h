#pragma once

#include "apps/window/BlacklistOpener.h"
#include "archive/StringTable.h"
#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/DesktopWorkspace.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"
#include "platform/NotificationCenter.h"
#include "platform/Pauser.h"
#include "platform/QtEventTimers.h"
#include "platform/desktop/DBusNotifications.h"
#include "platform/desktop/SessionBus.h"
#include "platform/desktop/SingleInstance.h"
#include "updater/ui/ApplicationUpdates.h"
#include "window/MainWindow.h"

#include <QObject>

#include <memory>

namespace quarry {

/// The main application with the real parts. Made after the application object, for the home folder in the
/// environment.
class WindowProgram final : public QObject {
public:
    /// `isOwnHome`: that home folder is the user's own, not one that was named for this start.
    explicit WindowProgram(bool isOwnHome);
    ~WindowProgram() override;

    enum class Start {
        Runs,       ///< The window is open; run the event loop.
        HandedOver, ///< Another copy has the window, and was told.
        Failed,     ///< See `fault`.
    };
    /// Opens the window, or hands over to the copy that has it.
    [[nodiscard]] Start start(const QStringList& files);
    /// Why it could not start, for a person.
    [[nodiscard]] QString fault() const { return _fault; }
    /// Lets a running copy of pages stop, saves without asking anybody, then ends the event loop.
    void quit();

private:
    void openWindow(const QStringList& files);
    void letAgentFollow(bool automatic, qint64 minutes);
    /// The session's end waits for what is not saved yet.
    void finishForSession();
    /// Everything is saved, or cannot be: other programs are told that the window is gone.
    void end(int status);

    bool _isOwnHome;
    QString _fault;
    HomeFolder _home;
    Bundle _bundle;
    StringTable _texts;
    StringTable _updaterTexts;
    SystemClock _clock;
    ThreadPauser _pauser;
    DiskFileStore _files;
    NotificationCenter _center;
    QtEventTimers _timers;
    SessionBus _bus;
    DBusNotifications _distributed;
    DesktopWorkspace _workspace;
    SingleInstance _instance;
    bool _isQuitting = false;
    bool _hasEnded = false;
    std::unique_ptr<MainWindow> _window;
    std::unique_ptr<BlacklistOpener> _blacklist;
    std::unique_ptr<ApplicationUpdates> _updates;
};

} // namespace quarry
