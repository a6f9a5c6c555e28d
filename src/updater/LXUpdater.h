#pragma once

#include "platform/Date.h"
#include "platform/LoopWorker.h"
#include "text/Url.h"
#include "updater/UpdateInfos.h"
#include "updater/UpdateInstallation.h"
#include "updater/UpdaterParts.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace quarry {

/// How a check ended, for programs that report it.
enum class UpdateCheckEnd {
    NoReply,         ///< No network, no such script, an address that is not trusted; see the log.
    NoUpdates,       ///< This installation never checks; the product says where its updates come from.
    NoInformation,   ///< The reply made no sense.
    NothingNew,      ///< The running version is current.
    Offered,         ///< A newer version: offered, held back for a day, or announced to the other programs.
    NeedsNewerSystem ///< There is another version, for a newer operating system.
};

/// Asks the maker's update script which version of the product is current, and offers, announces, or installs it.
///
/// Lives on one thread, that of its event loop. Only requests and the install run elsewhere; what they bring comes back
/// through the loop. Destroying the updater stops a request within a fraction of a second.
class LXUpdater final {
public:
    explicit LXUpdater(UpdaterParts parts);
    ~LXUpdater();
    LXUpdater(const LXUpdater&) = delete;
    LXUpdater& operator=(const LXUpdater&) = delete;

    /// The process-wide updater, made by the program's main function. Only apps/ reaches for it.
    [[nodiscard]] static LXUpdater& defaultUpdater();
    static void setDefaultUpdater(std::unique_ptr<LXUpdater> updater);

    // --- Settings -----------------------------------------------------------------------------------------------
    /// An empty address is ignored; without one the product's own is used. A request replaces it by its full address,
    /// so it is set again before another check.
    void setScriptURL(const Url& url);
    /// No check is made without one.
    void setProductReference(const QString& reference) { _productRef = reference; }
    /// Where the new bundle goes: the path of the bundle to replace. Unset, the running one.
    void setInstallationPath(const QString& path) { _installationPath = path; }
    /// Whether the script may log the request.
    void setLogFlag(bool logging) { _logging = logging; }
    /// Whether this program shows the offer itself; else it announces the new version to the others.
    void setCanWarnUser(bool canWarn) { _canWarn = canWarn; }
    /// A check that the user asked for: is always answered, and sent with the opposite log flag.
    void setManualUpdate(bool manual);
    /// The next offer is not held back.
    void resetUpdateTime() { _lastUpdate = Date(); }
    /// Not owned; it must be taken away (null) before it goes.
    void setResultDelegate(UpdateResultDelegate* delegate) { _resultDelegate = delegate; }
    /// Called once each check has been decided on; not when a check does not begin.
    void setCheckEndedHandler(std::function<void(UpdateCheckEnd)> handler) { _checkEnded = std::move(handler); }
    /// Called once an accepted offer has come to its end: installed (the program ends next), failed, or cancelled.
    void setInstallationEndedHandler(std::function<void(UpdateInstallation::End)> handler);

    [[nodiscard]] const Url& scriptURL() const { return _scriptURL; }
    [[nodiscard]] const ProductInfo& product() const { return _parts.product; }
    /// The last reply; none before one came.
    [[nodiscard]] std::optional<UpdateInfos> updateInfos() const { return _currentInfos; }
    /// An install runs in this program: it does not quit on "QUIT_EVERYBODY_NOTIFICATION QS1", which it posts itself.
    [[nodiscard]] bool isInstalling() const;
    /// An accepted offer is being downloaded or installed.
    [[nodiscard]] bool isUpdating() const { return !_isInstallationOver; }
    /// Why the last download failed, one line for a person; empty when it did not.
    [[nodiscard]] QString installationFault() const { return _installation ? _installation->fault() : QString(); }
    /// A modal window, or the update window, is shown.
    [[nodiscard]] bool isShowingWindow() const;

    // --- Check --------------------------------------------------------------------------------------------------
    // All return at once; a check that is asked for while one runs is answered by that one.
    void checkVersionAsynchronous();
    /// After a pause of 5 seconds.
    void checkVersionAsynchronousBackground();
    /// With askUser false the update is installed without asking. Nothing happens once that was begun, and without a
    /// product reference.
    void checkVersionAsynchronousAskUser(bool askUser);
    /// The decision over a reply; none stands for a reply that made no sense.
    UpdateCheckEnd checkudatesWithVersionInPhp(const std::optional<UpdateInfos>& infos);
    /// Whether that version is newer than the running one, by the rules of isNewerVersion.
    [[nodiscard]] bool newerVersionAvailable(const QString& remoteVersion) const;

    // --- Offer --------------------------------------------------------------------------------------------------
    /// Shows the offer, at most once in 86100 seconds unless the check is manual.
    void askForDownloadUpdate(const QString& version);
    /// The answer to the offer; 1 accepts.
    void controllerResult(int result);
    /// From the window's Cancel button: ends a running download, leaves nothing of it, and hides the window.
    void cancelUpdate();
    /// The newer-OS warning, with its "do not show again".
    void warnOSMoreRecentMainThread();

private:
    struct Check;

    void beginRequest();
    void takeReply(const std::optional<QByteArray>& reply);
    void endCheck(UpdateCheckEnd end);
    UpdateCheckEnd tellNothingNew(UpdateCheckEnd end);
    void tellWhereUpdatesComeFrom();
    void startDownload();
    [[nodiscard]] bool mayInstall() const;
    void postNewVersion(const UpdateInfos& infos);
    [[nodiscard]] bool isHeldBack() const;
    void showAlert(const QString& title, const QString& message, const QStringList& buttons,
                   std::function<void(int)> answered = {});
    [[nodiscard]] UpdaterWindow* window();

    UpdaterParts _parts;
    std::unique_ptr<UpdaterWindow> _windowController;
    std::optional<UpdateInfos> _currentInfos;
    Url _scriptURL;
    bool _logging = false;
    bool _manualUdate = false;
    bool _canWarn = false;
    bool _autoUpdate = false;
    Date _lastUpdate; ///< When the offer was last shown.
    QString _productRef;
    QString _installationPath;
    UpdateResultDelegate* _resultDelegate = nullptr;
    std::function<void(UpdateCheckEnd)> _checkEnded;
    std::function<void(UpdateInstallation::End)> _installationEnded;
    std::unique_ptr<Check> _check;                     ///< The request that runs.
    std::unique_ptr<UpdateInstallation> _installation; ///< The last accepted offer, also when it has ended.
    bool _isInstallationOver = true;
    LoopWorker _later; ///< For what is to happen later.
};

} // namespace quarry
