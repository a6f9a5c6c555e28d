// The agent's start, its timers, and its end. What the user and the other programs ask of it stands in
// QSMenuRequests.cpp.

#include "agent/QSMenu.h"

#include "agent/BundleWatchdog.h"
#include "agent/NewResultsText.h"
#include "platform/SystemLog.h"

#include <utility>

namespace quarry {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds TickInterval = 1s;
constexpr std::chrono::seconds RestartInterval = 13200s;
constexpr std::chrono::seconds UntilUpdateCheck = 20s;
constexpr std::chrono::milliseconds UntilMainAppHasSaved = 200ms;
constexpr std::chrono::milliseconds UntilTermination = 10ms;
constexpr double LongAgo = 30.0;

/// Somebody who only asks whether an agent runs holds the lock for an instant.
constexpr std::chrono::milliseconds BetweenLooksForLock = 100ms;
constexpr int LooksForLock = 3;
/// An agent that starts beside this one sees that the lock is taken and is gone soon.
constexpr std::chrono::milliseconds BetweenLooksForCopies = 500ms;
constexpr int LooksForCopies = 20;

QString newVersionNotification()
{
    return QStringLiteral("NEW_VERSION_AVAILABLE_NOTIFICATION QS1");
}

bool isLaunched(const QString& name, const ProcessSnapshot& processes)
{
    return processInfoForDaemonNamed(name, processes).has_value();
}

QString mainApp()
{
    return QStringLiteral("QuarrySpotter");
}

QString updaterApp()
{
    return QStringLiteral("QuarrySpotterUpdater");
}

} // namespace

QSMenu::QSMenu(AgentParts parts)
    : _parts(std::move(parts)), _events(_parts.events), _items(_parts.statusItem, _parts.texts),
      _selfRestart({_parts.bundle, _parts.processes.ownProcessId(), _parts.workspace, _events,
                    [this] { return _state.updating || _parts.softwareUpdates.isShowingWindow(); },
                    [this] { return isMainAppLaunched(); }, [this] { terminate(); }})
{
}

void QSMenu::awakeFromNib()
{
    _parts.softwareUpdates.renew();
    _state.iconOn = false;
    _state.newItems = false;
    takeLock(LooksForLock);
}

void QSMenu::takeLock(int looksLeft)
{
    switch (_lock.take(_parts.home, _parts.processes.ownProcessId())) {
    case AgentLock::Outcome::Taken:
        return checkMenuBarExistence(LooksForCopies);
    case AgentLock::Outcome::Unavailable:
        return checkMenuBarExistence(0);
    case AgentLock::Outcome::HeldByAnother:
        break;
    }
    if (looksLeft > 0) {
        _events.after(BetweenLooksForLock, [this, looksLeft] { takeLock(looksLeft - 1); });
        return;
    }
    systemLog(QStringLiteral("another agent runs already; this one leaves"));
    terminate();
}

void QSMenu::checkMenuBarExistence(int looksLeft)
{
    if (copiesRunning(_parts.bundle.processName(), _parts.processes.processes()) < 2)
        return start();
    if (looksLeft > 0) {
        _events.after(BetweenLooksForCopies, [this, looksLeft] { checkMenuBarExistence(looksLeft - 1); });
        return;
    }
    systemLog(QStringLiteral("another agent runs on this machine; this one leaves"));
    terminate();
}

AgentSchedule QSMenu::readSchedule() const
{
    return AgentSchedule::read(Schedule(_parts.home, _parts.files), _parts.clock.now());
}

bool QSMenu::mustLaunchMenu() const
{
    const AgentSchedule schedule = readSchedule();
    return schedule.exists && schedule.automatic;
}

LXAppUtils QSMenu::appUtils() const
{
    return {_parts.bundle, _parts.osVersion, _parts.loginItems, LegacyLoginItems(_parts.home, _parts.files)};
}

void QSMenu::start()
{
    const AgentSchedule schedule = readSchedule();
    if (!schedule.exists || !schedule.automatic)
        return leaveUnwanted(schedule.fault);
    _parts.distributed.addObserver(newVersionNotification(),
                                   [run = _events.guarded([this] { warnUpdate(); })](const auto&) { run(); });
    if (schedule.checkForUpdates)
        _events.after(UntilUpdateCheck, [this] { delayedCheckUpdates(); });
    if (!appUtils().isMyAppInLoginItems())
        appUtils().setMyAppInLoginItems(true);
    makeStatusItem();
    _parts.distributed.addObserver(QStringLiteral("kAppWillQuitNotification"),
                                   [run = _events.guarded([this] { mainAppQuit(); })](const auto&) { run(); });
    _parts.distributed.addObserver(QStringLiteral("QUIT_EVERYBODY_NOTIFICATION QS1"),
                                   [run = _events.guarded([this] { quitMenu(); })](const auto&) { run(); });
    _state.periodicity = schedule.periodicity;
    _state.nextLaunch = schedule.firstLaunch(_parts.clock.now());
    lookAtMainApp();
    startTimers();
}

void QSMenu::leaveUnwanted(const QString& fault)
{
    // A file that cannot be read says nothing about what the user wants at the next login.
    if (fault.isEmpty())
        appUtils().removeMyAppInLoginItems();
    systemLog(fault.isEmpty() ? QStringLiteral("automatic refresh is off; the agent leaves")
                              : QStringLiteral("%1; the agent leaves").arg(fault));
    terminate();
}

void QSMenu::makeStatusItem()
{
    _parts.statusItem.setActionHandler([this](StatusItem::Tag tag) { menuAction(tag); });
    _parts.statusItem.setIcon(StatusItem::Icon::Plain);
    _parts.statusItem.show();
    _items.enableAll();
}

void QSMenu::lookAtMainApp()
{
    _state.previousLoop = _parts.clock.now();
    _state.previousAppState = isMainAppLaunched();
    if (_state.previousAppState) {
        _state.blink = false;
        _events.post([this] { activateMenus(false); });
        return;
    }
    lookAtDatabase();
    activateMenus(true);
}

void QSMenu::startTimers()
{
    _events.every(TickInterval, [this] { checkProcessProgram(); });
    _events.every(TickInterval, [this] { loopTimer(); });
    _events.every(RestartInterval, [this] { autoRelaunchDaemon(); });
}

void QSMenu::loopTimer()
{
    const ProcessSnapshot processes = _parts.processes.processes();
    const TickDecision decision =
        decideTick(_state, {_parts.clock.now(), isLaunched(mainApp(), processes), isLaunched(updaterApp(), processes)});
    _items.show(decision.menu, decision.secondsToLaunch);
    if (decision.launchUpdater)
        _events.post([this] { launchUpdater(); });
    if (decision.removeNotifications)
        removeAppsNotifications(false);
    if (decision.removeInfo)
        _parts.statusItem.removeInfo();
    _parts.statusItem.setIcon(decision.icon);
    if (decision.lookAtDatabase)
        lookAtDatabase();
}

void QSMenu::lookAtDatabase()
{
    _state.awaitsNews = true;
    _parts.database.look(_events.guarded([this, look = ++_looks] {
        // One that began earlier may have come too early for what this one is about.
        if (look == _looks)
            takeDatabaseNews();
    }));
}

void QSMenu::takeDatabaseNews()
{
    const DatabaseNews& news = _parts.database.news();
    if (!takeNews(_state, news.unreadResults))
        return;
    const InfoText text = newResultsText(news.queriesWithNewResults, _parts.texts);
    _parts.statusItem.setInfo(text);
    if (hasUserNotifications() && nbUserNotifications() == 0)
        postUserNotification(UserNotification{QStringLiteral("QuarrySpotter"), text.body()});
}

bool QSMenu::isUpdaterAppLaunched() const
{
    return isLaunched(updaterApp(), _parts.processes.processes());
}

bool QSMenu::isMainAppLaunched() const
{
    return isLaunched(mainApp(), _parts.processes.processes());
}

void QSMenu::launchUpdater()
{
    const QString updater = _parts.bundle.updaterApplication();
    if (_parts.workspace.openBundle(updater))
        return;
    const QString report =
        QStringLiteral("The refresh could not be started: %1. It is tried again when the next one is due.")
            .arg(updater);
    systemLog(report);
    _parts.log.logString(report);
}

void QSMenu::killUpdater()
{
    const auto updaters = processInfoForDaemonNamed(updaterApp(), _parts.processes.processes());
    if (updaters)
        _parts.processes.interrupt(updaters->first().daemonPID);
}

void QSMenu::checkProcessProgram()
{
    if (isBundleInPlace(_parts.bundle.path, _parts.osVersion))
        return;
    killUpdater();
    _events.after(UntilTermination, [this] { terminateDelayed(); });
}

void QSMenu::delayedCheckUpdates()
{
    if (!isMainAppLaunched())
        _parts.softwareUpdates.checkQuietly();
}

void QSMenu::mainAppQuit()
{
    _state.blink = false;
    // Until its last save was read, nothing is known; a look that began before does not count.
    _state.awaitsNews = true;
    ++_looks;
    _events.after(UntilMainAppHasSaved, [this] {
        _state.previousLoop = _parts.clock.now().plusSeconds(-LongAgo);
        lookAtDatabase();
    });
}

void QSMenu::quitMenu()
{
    terminate();
}

void QSMenu::terminateDelayed()
{
    _mustQuitMenu = true;
    terminate();
}

void QSMenu::terminate()
{
    _events.end();
    _parts.terminate();
}

} // namespace quarry
