#include "updater/ui/ApplicationUpdates.h"

#include "updater/ui/LXUpdaterController.h"

#include <QFile>

#include <utility>

namespace quarry {

ApplicationUpdates::ApplicationUpdates(Parts parts)
    : _parts(std::move(parts)), _defaults(_parts.home, _parts.files),
      _installation(_parts.home, _parts.bundlePath, _parts.workspace, _parts.quit,
                    [this](const QString& bundle) { return openAfterThisProcess(_parts.workspace, bundle); }),
      _updater(updaterParts()), _self(std::make_shared<ApplicationUpdates*>(this))
{
    _updater.setProductReference(QStringLiteral("QS1"));
    _updater.setCanWarnUser(true);
    _updater.setCheckEndedHandler([this](UpdateCheckEnd end) { checkEnded(end); });
    // The agent says nothing to the user while the main application is open.
    _parts.notifications.addObserver(QStringLiteral("NEW_VERSION_AVAILABLE_NOTIFICATION QS1"),
                                     [self = std::weak_ptr(_self)](const DistributedNotifications::UserInfo&) {
                                         if (const auto alive = self.lock())
                                             (*alive)->offerAnnounced();
                                     });
}

ApplicationUpdates::~ApplicationUpdates() = default;

UpdaterParts ApplicationUpdates::updaterParts()
{
    ProductInfo product = productInfoOfBundle(_parts.bundlePath);
    const auto makeWindow = [this, version = product.version] {
        auto window = std::make_unique<LXUpdaterController>(
            LXUpdaterController::Parts{version, _parts.clock, _parts.events, _parts.texts, makeUpdateLoader,
                                       [this](const QString& address) { _parts.workspace.openAddress(address); }});
        _window = window.get();
        return window;
    };
    return {std::move(product), _parts.clock,     _parts.events, _parts.notifications,  _defaults, _alerts,
            _parts.texts,       makeUpdateLoader, makeWindow,    &_installation.parts()};
}

bool ApplicationUpdates::isBusy() const
{
    return _updater.isUpdating() || _updater.isShowingWindow();
}

void ApplicationUpdates::checkForUpdates()
{
    if (isBusy()) {
        if (_window && _window->isShowing())
            _window->bringToFront();
        return;
    }
    _isAsked = true;
    _updater.setManualUpdate(true);
    begin();
}

void ApplicationUpdates::takeUpOffer()
{
    if (QFile::remove(_parts.home.updaterFlagFile()))
        checkForUpdates();
}

void ApplicationUpdates::offerAnnounced()
{
    if (isBusy() || _isAsked)
        return;
    _updater.setManualUpdate(false);
    begin();
}

void ApplicationUpdates::begin()
{
    _updater.setScriptURL(_updater.product().scriptUrl);
    _updater.checkVersionAsynchronous();
}

void ApplicationUpdates::checkEnded(UpdateCheckEnd end)
{
    if (!std::exchange(_isAsked, false) || end != UpdateCheckEnd::NoReply)
        return;
    const auto text = [this](const char16_t* key) { return _parts.texts.text(QString::fromUtf16(key)); };
    _alerts.show({text(u"Updater_1.0_No answer title"),
                  text(u"Updater_1.0_No answer message"),
                  {text(u"Updater_1.0_Ok button")}},
                 {});
}

} // namespace quarry
