#pragma once

#include "agent/LXSoftwareUpdates.h"
#include "agent/QSMenu.h"
#include "agent/ui/QtAlerts.h"
#include "agent/ui/TrayStatusItem.h"
#include "log/Logger.h"
#include "platform/Bundle.h"
#include "platform/DesktopWorkspace.h"
#include "platform/LoopWorker.h"
#include "platform/QtEventTimers.h"
#include "platform/XdgLoginItems.h"
#include "platform/desktop/DBusNotifications.h"
#include "platform/desktop/DesktopNotifications.h"
#include "platform/desktop/SessionBus.h"
#include "platform/linux/LinuxProcessTable.h"
#include "updater/PreferencesDefaults.h"
#include "updater/ui/UpdaterAlertBoxes.h"

#include <QStringList>

namespace quarry {

/// The agent with the real parts. Made after the application object, for the home folder in the environment.
class AgentProgram final {
public:
    AgentProgram();
    AgentProgram(const AgentProgram&) = delete;
    AgentProgram& operator=(const AgentProgram&) = delete;

    /// Opens the files, then starts the agent. To be called from the event loop.
    void start(const QStringList& files);

private:
    [[nodiscard]] AgentParts parts();
    [[nodiscard]] std::unique_ptr<LXUpdater> makeUpdater();
    void openWithoutMainApplication();

    /// The product's log, opened for the first line.
    class ProductLog final : public Logger {
    public:
        void logString(const QString& text) override;
    };

    AgentBundle _bundle;
    HomeFolder _home;
    StringTable _texts;
    StringTable _updaterTexts;
    SystemClock _clock;
    DiskFileStore _files;
    ProductLog _log;
    QtEventTimers _events;
    SessionBus _bus;
    LinuxProcessTable _processes;
    DesktopWorkspace _workspace;
    DBusNotifications _distributed;
    DesktopNotifications _notifications;
    XdgLoginItems _loginItems;
    TrayStatusItem _statusItem;
    QtAlerts _alerts;
    UpdaterAlertBoxes _updaterAlerts;
    PreferencesDefaults _updaterDefaults;
    DatabaseResults _results;
    LoopWorker _databaseReading{_events}; ///< Goes before the results.
    LXSoftwareUpdates _updates;
    QSMenu _menu;
};

} // namespace quarry
