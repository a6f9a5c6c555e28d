#pragma once

#include "agent/LXSoftwareUpdates.h"
#include "agent/QSMenu.h"
#include "agent/ui/TrayStatusItem.h"
#include "platform/DesktopWorkspace.h"
#include "platform/LoopWorker.h"
#include "platform/QtEventTimers.h"
#include "platform/XdgLoginItems.h"
#include "platform/desktop/DBusNotifications.h"
#include "platform/desktop/DesktopNotifications.h"
#include "platform/desktop/SessionBus.h"
#include "platform/linux/LinuxProcessTable.h"
#include "support/DesktopDoubles.h"

#include <QTemporaryDir>

namespace quarry::bench {

/// A home folder whose schedule has nothing due for a month, and no check for a newer version.
class IdleHome final {
public:
    IdleHome();
    [[nodiscard]] QString path() const { return _folder.path(); }
    [[nodiscard]] HomeFolder home() const { return HomeFolder(path()); }
    /// A query with one result that nobody read.
    void addUnreadResult() const;

    /// The agent's bundle in the build tree.
    [[nodiscard]] static QString bundle();

private:
    QTemporaryDir _folder;
};

/// The agent in this process, with the real parts but those that could start or ask something. Needs an application
/// object.
class IdleAgent final {
public:
    explicit IdleAgent(const IdleHome& home);

    /// Works through that many seconds of its life as fast as it can; the clock moves along.
    void tick(int count);
    /// Refreshes it has started.
    [[nodiscard]] int launches() const { return int(_workspace.opened.size()); }

private:
    class MovingClock final : public Clock {
    public:
        [[nodiscard]] Date now() const override { return SystemClock().now().plusSeconds(ahead); }
        double ahead = 0.0;
    };
    class NoAlerts final : public Alerts {
    public:
        void ask(const Alert&, std::function<void(int)>) override {}
    };
    class NoUpdates final : public SoftwareUpdates {
    public:
        void renew() override {}
        void checkQuietly() override {}
        [[nodiscard]] bool isShowingWindow() const override { return false; }
        [[nodiscard]] QString currentVersion() const override { return {}; }
        void askForDownloadUpdate(const QString&, std::function<void(int)>) override {}
    };
    class NoLog final : public Logger {
    public:
        void logString(const QString&) override {}
    };
    [[nodiscard]] AgentParts parts();

    HomeFolder _home;
    AgentBundle _bundle = AgentBundle::at(IdleHome::bundle());
    StringTable _texts;
    MovingClock _clock;
    DiskFileStore _files;
    QtEventTimers _events;
    SessionBus _bus;
    LinuxProcessTable _processes;
    test::NotingWorkspace _workspace;
    DBusNotifications _distributed{_bus};
    DesktopNotifications _notifications;
    XdgLoginItems _loginItems;
    TrayStatusItem _statusItem;
    NoAlerts _alerts;
    NoUpdates _updates;
    NoLog _log;
    DatabaseResults _results;
    LoopWorker _databaseReading{_events}; ///< Goes before the results.
    QSMenu _menu;
};

} // namespace quarry::bench
