// What the user and the other programs ask of the agent.

#include "agent/QSMenu.h"
#include "platform/SystemLog.h"

#include <QFile>
#include <QFileInfo>

namespace quarry {

namespace {

constexpr int FirstWithUserNotifications = 100800;
constexpr int UpdateAccepted = 1;
constexpr int DefaultButton = 0;

} // namespace

void QSMenu::activateMenus(bool active)
{
    const MenuState shown = _state.updating ? MenuState::Updating : MenuState::CountingDown;
    _items.show(active ? shown : MenuState::MainApplicationOpen, secondsToLaunch(_state, _parts.clock.now()));
}

void QSMenu::menuAction(StatusItem::Tag tag)
{
    switch (tag) {
    case StatusItem::Tag::OpenApplication:
        return openMainApplication();
    case StatusItem::Tag::Refresh:
        return startRefresh();
    case StatusItem::Tag::Quit:
        return askToQuit();
    }
}

void QSMenu::startRefresh()
{
    const Date now = _parts.clock.now();
    _items.show(MenuState::Updating, 0.0);
    _state.nextLaunch = now.plusSeconds(static_cast<double>(_state.periodicity));
    _state.updating = true;
    _events.post([this] { launchUpdater(); });
}

void QSMenu::askToQuit()
{
    const StringTable& texts = _parts.texts;
    _parts.alerts.ask({texts.text(QStringLiteral("100_QSMenu Quit Title")),
                       texts.text(QStringLiteral("100_QSMenu Quit Message")),
                       {texts.text(QStringLiteral("100_QSMenu Quit button")),
                        texts.text(QStringLiteral("100_QSMenu Cancel button"))}},
                      [this](int button) {
                          if (button == DefaultButton)
                              terminateDelayed();
                      });
}

void QSMenu::openMainApplication()
{
    const QString bundle = _parts.bundle.mainApplication();
    if (_parts.workspace.openBundle(bundle))
        return;
    systemLog(QStringLiteral("%1 could not be opened").arg(bundle));
    if (_parts.openWithoutMainApplication)
        _parts.openWithoutMainApplication();
}

bool QSMenu::openFile(const QString& path)
{
    return QFileInfo(path).suffix() == QLatin1String("qsexport") &&
           _parts.workspace.openFile(path, _parts.bundle.mainApplication());
}

void QSMenu::warnUpdate()
{
    if (isMainAppLaunched())
        return;
    const QString version = _parts.softwareUpdates.currentVersion();
    if (!version.isEmpty() && !_parts.bundle.version.isEmpty()) {
        _parts.softwareUpdates.askForDownloadUpdate(version, [this](int result) { updateResulteDidGetResult(result); });
        return;
    }
    const StringTable& texts = _parts.updaterTexts;
    _parts.alerts.ask({texts.text(QStringLiteral("Updater_1.0_NewVersionCheckTitle")),
                       texts.text(QStringLiteral("Updater_1.0_NewVersionCheckText")),
                       {texts.text(QStringLiteral("Updater_1.0_NewVersionCheckGoToButton")),
                        texts.text(QStringLiteral("Updater_1.0_NewVersionMoreInfoButton")),
                        texts.text(QStringLiteral("Updater_1.0_NewVersionCheckCancelButton"))}},
                      [](int) {});
}

void QSMenu::updateResulteDidGetResult(int result)
{
    if (result != UpdateAccepted)
        return;
    QFile flag(_parts.home.updaterFlagFile());
    if (!flag.open(QIODevice::WriteOnly | QIODevice::Truncate))
        systemLog(QStringLiteral("cannot write %1: %2").arg(flag.fileName(), flag.errorString()));
    openMainApplication();
}

bool QSMenu::hasUserNotifications() const
{
    return _parts.osVersion >= FirstWithUserNotifications;
}

qsizetype QSMenu::nbUserNotifications() const
{
    return hasUserNotifications() ? _parts.notifications.delivered().size() : 0;
}

void QSMenu::postUserNotification(const std::optional<UserNotification>& notification)
{
    if (!hasUserNotifications() || !notification)
        return;
    _parts.notifications.removeAllDelivered();
    _parts.notifications.setActivationHandler([this](UserNotificationCenter::Identifier activated) {
        userNotificationCenterDidActivateNotification(activated);
    });
    _parts.notifications.deliver(*notification);
}

void QSMenu::removeAppsNotifications(bool onlyPresented)
{
    if (!hasUserNotifications())
        return;
    if (!onlyPresented)
        _parts.notifications.removeAllDelivered();
    // Whatever the desktop counts as delivered, it presents.
    for (const UserNotificationCenter::Identifier notification : _parts.notifications.delivered())
        _parts.notifications.remove(notification);
}

void QSMenu::userNotificationCenterDidActivateNotification(UserNotificationCenter::Identifier notification)
{
    _parts.notifications.remove(notification);
    removeAppsNotifications(false);
    openMainApplication();
}

} // namespace quarry
