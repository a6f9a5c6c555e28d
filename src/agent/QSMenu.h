#pragma once

#include "agent/AgentLock.h"
#include "agent/AgentParts.h"
#include "agent/AgentSchedule.h"
#include "agent/LXAppUtils.h"
#include "agent/LastingEvents.h"
#include "agent/MenuItems.h"
#include "agent/ProcessLookup.h"
#include "agent/SelfRestart.h"
#include "agent/TickDecision.h"

#include <QString>

#include <optional>

namespace quarry {

/// The agent: keeps the schedule of refreshes, follows the updater application and the main application, and decides
/// what the status item shows. It never writes the database, and has it read elsewhere. Everything else happens on the
/// main thread, from timers and notifications, and nothing there waits.
class QSMenu final {
public:
    explicit QSMenu(AgentParts parts);
    QSMenu(const QSMenu&) = delete;
    QSMenu& operator=(const QSMenu&) = delete;

    /// Start-up. An agent that is not wanted asks to be terminated instead. Where another agent seems to run, that is
    /// found out over some seconds before the start goes on.
    void awakeFromNib();

    /// The one-second tick.
    void loopTimer();
    /// The bundle watchdog, every second: an agent whose bundle is gone interrupts the updater and leaves.
    void checkProcessProgram();
    void autoRelaunchDaemon() { _selfRestart.autoRelaunchDaemon(); }
    void delayedCheckUpdates();

    void launchUpdater();
    void killUpdater();
    [[nodiscard]] bool isUpdaterAppLaunched() const;
    [[nodiscard]] bool isMainAppLaunched() const;
    /// The schedule file exists and asks for automatic refresh.
    [[nodiscard]] bool mustLaunchMenu() const;

    void mainAppQuit();
    void quitMenu();
    void terminateDelayed();
    void warnUpdate();
    void updateResulteDidGetResult(int result);
    /// Opens an exported file ("….qsexport") with the main application; false for any other file.
    bool openFile(const QString& path);

    void activateMenus(bool active);
    void menuAction(StatusItem::Tag tag);
    [[nodiscard]] qsizetype nbUserNotifications() const;
    void postUserNotification(const std::optional<UserNotification>& notification);
    void removeAppsNotifications(bool onlyPresented);
    void userNotificationCenterDidActivateNotification(UserNotificationCenter::Identifier notification);

    [[nodiscard]] const AgentState& state() const { return _state; }
    /// Set before a deliberate quit.
    [[nodiscard]] bool mustQuitMenu() const { return _mustQuitMenu; }

private:
    void takeLock(int looksLeft);
    void checkMenuBarExistence(int looksLeft);
    void start();
    void leaveUnwanted(const QString& fault);
    void makeStatusItem();
    void lookAtMainApp();
    void startTimers();
    void startRefresh();
    void lookAtDatabase();
    void takeDatabaseNews();
    void askToQuit();
    void openMainApplication();
    void terminate();
    [[nodiscard]] AgentSchedule readSchedule() const;
    [[nodiscard]] LXAppUtils appUtils() const;
    [[nodiscard]] bool hasUserNotifications() const;

    AgentParts _parts;
    LastingEvents _events;
    MenuItems _items;
    SelfRestart _selfRestart;
    AgentLock _lock;
    AgentState _state;
    int _looks = 0; ///< At the database, begun so far.
    bool _mustQuitMenu = false;
};

} // namespace quarry
