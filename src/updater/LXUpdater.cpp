#include "updater/LXUpdater.h"

#include "platform/SystemLog.h"
#include "updater/IntegerValue.h"
#include "updater/RequestCoding.h"
#include "updater/TrustedAddress.h"
#include "updater/UpdateReply.h"
#include "updater/VersionComparison.h"

#include <utility>

namespace quarry {

namespace {

constexpr double secondsBetweenOffers = 86100;
constexpr std::chrono::seconds backgroundDelay{5};

std::unique_ptr<LXUpdater>& processInstance()
{
    static std::unique_ptr<LXUpdater> updater;
    return updater;
}

} // namespace

/// One request on a thread of its own; going away ends it.
struct LXUpdater::Check {
    Check(std::shared_ptr<UpdateLoader> pages, EventTimers& events) : loader(std::move(pages)), worker(events) {}
    ~Check() { loader->stop(); }
    Check(const Check&) = delete;
    Check& operator=(const Check&) = delete;

    std::shared_ptr<UpdateLoader> loader;
    LoopWorker worker; ///< Goes first, and waits for the request, which was told to stop.
};

LXUpdater::LXUpdater(UpdaterParts parts) : _parts(std::move(parts)), _later(_parts.events) {}

LXUpdater::~LXUpdater() = default;

LXUpdater& LXUpdater::defaultUpdater()
{
    return *processInstance();
}

void LXUpdater::setDefaultUpdater(std::unique_ptr<LXUpdater> updater)
{
    processInstance() = std::move(updater);
}

// --- Settings -------------------------------------------------------------------------------------------------------

void LXUpdater::setScriptURL(const Url& url)
{
    if (!url.isEmpty())
        _scriptURL = url;
}

void LXUpdater::setManualUpdate(bool manual)
{
    _manualUdate = manual;
    _logging = !manual;
}

bool LXUpdater::isShowingWindow() const
{
    return _parts.alerts.isShowing() || (_windowController && _windowController->isShowing());
}

// --- Check ----------------------------------------------------------------------------------------------------------

void LXUpdater::checkVersionAsynchronous()
{
    _autoUpdate = false;
    checkVersionAsynchronousAskUser(true);
}

void LXUpdater::checkVersionAsynchronousBackground()
{
    _autoUpdate = false;
    _later.after(backgroundDelay, [this] { checkVersionAsynchronousAskUser(true); });
}

void LXUpdater::checkVersionAsynchronousAskUser(bool askUser)
{
    if (_autoUpdate || _productRef.isEmpty())
        return;
    if (!_parts.product.checksForUpdates()) {
        tellWhereUpdatesComeFrom();
        return;
    }
    _autoUpdate = !askUser;
    if (!_check)
        beginRequest();
}

void LXUpdater::beginRequest()
{
    if (_scriptURL.isEmpty())
        _scriptURL = _parts.product.scriptUrl;
    if (!isTrustedUpdateAddress(_scriptURL)) {
        systemLog(QStringLiteral("no check for updates: %1 is not HTTPS").arg(_scriptURL.absoluteString()));
        endCheck(UpdateCheckEnd::NoReply);
        return;
    }
    const QString payload = updateRequestPayload(_parts.product, _productRef, _logging);
    _scriptURL = Url::fromStored(_scriptURL.absoluteString() + u'?' + RequestCoding::asciiToHexa(payload));
    _check = std::make_unique<Check>(_parts.makeLoader(), _parts.events);
    _check->worker.run([this, loader = _check->loader, request = _scriptURL] {
        return [this, reply = fetchUpdateReply(*loader, request)] { takeReply(reply); };
    });
}

void LXUpdater::takeReply(const std::optional<QByteArray>& reply)
{
    _check.reset();
    if (!reply) {
        debugLog(QStringLiteral("the update script did not answer"));
        endCheck(UpdateCheckEnd::NoReply);
        return;
    }
    _currentInfos = readUpdateReply(*reply, _parts.texts);
    endCheck(checkudatesWithVersionInPhp(_currentInfos));
}

void LXUpdater::endCheck(UpdateCheckEnd end)
{
    if (_checkEnded)
        _checkEnded(end);
}

UpdateCheckEnd LXUpdater::checkudatesWithVersionInPhp(const std::optional<UpdateInfos>& infos)
{
    if (!infos || infos->osMini.isEmpty() || infos->curentVersion.isEmpty())
        return tellNothingNew(UpdateCheckEnd::NoInformation);
    if (integerValue(infos->osMini) > _parts.product.osVersion) {
        if (_parts.defaults.warnAgainUserForMoreRecentOS())
            warnOSMoreRecentMainThread();
        return UpdateCheckEnd::NeedsNewerSystem;
    }
    if (!newerVersionAvailable(infos->curentVersion))
        return tellNothingNew(UpdateCheckEnd::NothingNew);
    if (_autoUpdate || _canWarn || _manualUdate)
        askForDownloadUpdate(infos->curentVersion);
    else
        postNewVersion(*infos);
    return UpdateCheckEnd::Offered;
}

bool LXUpdater::newerVersionAvailable(const QString& remoteVersion) const
{
    return isNewerVersion(remoteVersion, _parts.product.version);
}

UpdateCheckEnd LXUpdater::tellNothingNew(UpdateCheckEnd end)
{
    if (_manualUdate) {
        _parts.alerts.bringToFront();
        showAlert(QStringLiteral("Updater_1.0_No new version title"),
                  QStringLiteral("Updater_1.0_No new version message"), {QStringLiteral("Updater_1.0_Ok button")});
        setManualUpdate(false);
    }
    return end;
}

void LXUpdater::tellWhereUpdatesComeFrom()
{
    if (_manualUdate) {
        _parts.alerts.bringToFront();
        const bool fromSystem = _parts.product.updatesComeFromSystem;
        showAlert(QStringLiteral("Updater_1.0_Updates elsewhere title"),
                  fromSystem ? QStringLiteral("Updater_1.0_Updates from system message")
                             : QStringLiteral("Updater_1.0_No update address message"),
                  {QStringLiteral("Updater_1.0_Ok button")});
        setManualUpdate(false);
    }
    endCheck(UpdateCheckEnd::NoUpdates);
}

void LXUpdater::postNewVersion(const UpdateInfos& infos)
{
    _parts.notifications.post(QStringLiteral("NEW_VERSION_AVAILABLE_NOTIFICATION QS1"),
                              {{QStringLiteral("ProductDownloadURLKey"), infos.productDownloadUrl.absoluteString()}});
}

void LXUpdater::warnOSMoreRecentMainThread()
{
    const auto answered = [&defaults = _parts.defaults](int button) {
        defaults.setWarnAgainUserForMoreRecentOS(button == 0);
    };
    showAlert(QStringLiteral("Updater_1.0_New version for recent os title"),
              QStringLiteral("Updater_1.0_New version for recent os  message"),
              {QStringLiteral("Updater_1.0_New version for recent os Ok button"),
               QStringLiteral("Updater_1.0_New version for recent os do not show again button")},
              answered);
}

void LXUpdater::showAlert(const QString& title, const QString& message, const QStringList& buttons,
                          std::function<void(int)> answered)
{
    const StringTable& texts = _parts.texts;
    UpdaterAlert alert{texts.text(title), texts.text(message), {}};
    for (const QString& button : buttons)
        alert.buttons.append(texts.text(button));
    _parts.alerts.show(alert, std::move(answered));
}

// --- Offer ----------------------------------------------------------------------------------------------------------

bool LXUpdater::isHeldBack() const
{
    const double elapsed = _parts.clock.now().secondsSince(_lastUpdate);
    // A date well in the future tells of a clock that was set back, and of no offer.
    return elapsed > -secondsBetweenOffers && elapsed < secondsBetweenOffers;
}

void LXUpdater::askForDownloadUpdate(const QString&)
{
    if (!_manualUdate && !_autoUpdate && isHeldBack())
        return;
    _lastUpdate = _parts.clock.now();
    UpdaterWindow* const controller = window();
    _parts.alerts.bringToFront();
    if (_autoUpdate)
        controllerResult(1);
    else if (controller)
        controller->showAskUpdate(_currentInfos.value_or(UpdateInfos()));
}

UpdaterWindow* LXUpdater::window()
{
    if (!_windowController && _parts.makeWindow) {
        _windowController = _parts.makeWindow();
        if (_windowController)
            _windowController->setMaster(this);
    }
    return _windowController.get();
}

void LXUpdater::controllerResult(int result)
{
    if (_resultDelegate)
        _resultDelegate->updateResulteDidGetResult(result);
    else if (result == 1)
        startDownload();
}

/// A version that is not newer is never installed, and nothing from an address that somebody on the way could answer.
bool LXUpdater::mayInstall() const
{
    if (!_currentInfos || !newerVersionAvailable(_currentInfos->curentVersion))
        return false;
    if (isTrustedUpdateAddress(_currentInfos->fileUrl))
        return true;
    systemLog(QStringLiteral("no update from %1: it is not HTTPS").arg(_currentInfos->fileUrl.absoluteString()));
    return false;
}

void LXUpdater::startDownload()
{
    UpdaterWindow* const controller = window();
    if (!_isInstallationOver || !_parts.installation || !controller)
        return;
    if (!mayInstall()) {
        controller->hide();
        _parts.alerts.bringToFront();
        showAlert(QStringLiteral("Updater_1.0_Download Error Title"),
                  QStringLiteral("Updater_1.0_Untrusted image message"), {QStringLiteral("OKButton")});
        if (_installationEnded)
            _installationEnded(UpdateInstallation::End::Failed);
        return;
    }
    _isInstallationOver = false;
    const QString path = _installationPath.isEmpty() ? _parts.product.bundlePath : _installationPath;
    _installation = std::make_unique<UpdateInstallation>(_parts, *_currentInfos, path, *controller,
                                                         [this](UpdateInstallation::End end) {
                                                             _isInstallationOver = true;
                                                             if (_installationEnded)
                                                                 _installationEnded(end);
                                                         });
}

void LXUpdater::setInstallationEndedHandler(std::function<void(UpdateInstallation::End)> handler)
{
    _installationEnded = std::move(handler);
}

bool LXUpdater::isInstalling() const
{
    return !_isInstallationOver && _installation && _installation->isInstalling();
}

void LXUpdater::cancelUpdate()
{
    if (!_isInstallationOver && _installation)
        _installation->cancel();
    if (_windowController)
        _windowController->hide();
}

} // namespace quarry
