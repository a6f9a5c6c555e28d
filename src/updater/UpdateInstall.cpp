#include "updater/UpdateInstall.h"

#include "platform/SystemLog.h"
#include "updater/DownloadPlace.h"
#include "updater/ImageSignature.h"

#include <QFileInfo>

#include <utility>

namespace quarry {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds timeToQuit{500};
constexpr milliseconds trashPoll{100};
constexpr milliseconds beforeAlert{100};
constexpr milliseconds beforeEnd{250};
constexpr std::int64_t largestImage = std::int64_t{1} << 30;

QString messageFor(InstallFault fault)
{
    switch (fault) {
    case InstallFault::Untrusted:
    case InstallFault::NotNewer:
    case InstallFault::Incomplete:
        return QStringLiteral("Updater_1.0_Untrusted image message");
    case InstallFault::NoSpace:
        return QStringLiteral("Updater_1.0_No space message");
    case InstallFault::NotInstalled:
        return QStringLiteral("Updater_1.0_Impossible to install message");
    default:
        return QStringLiteral("Updater_1.0_Impossible to download message");
    }
}

} // namespace

UpdateInstall::UpdateInstall(const UpdaterParts& parts, InstallOrder order, UpdaterWindow& window,
                             std::function<void(InstallFault)> ended)
    : _parts(parts), _services(*parts.installation), _order(std::move(order)), _window(window),
      _ended(std::move(ended)), _tool(_services.makeTool()), _worker(parts.events)
{
}

UpdateInstall::~UpdateInstall()
{
    _worker.finish();
    if (!_trashed.isEmpty() && !_services.files.exists(_order.installedPath))
        placeNew();
    cleanUp();
}

void UpdateInstall::installUpdate()
{
    _parts.alerts.bringToFront();
    _worker.run([this]() -> LoopWorker::Call {
        const InstallFault fault = prepare();
        if (fault != InstallFault::None)
            return [this, fault] { fail(_isCancelled ? InstallFault::Stopped : fault); };
        return [this] {
            if (_isCancelled)
                return fail(InstallFault::Stopped);
            _parts.notifications.post(QStringLiteral("QUIT_EVERYBODY_NOTIFICATION QS1"));
            _toldToQuit = true;
            _worker.after(timeToQuit, [this] { moveOldToTrash(); });
        };
    });
}

// --- On the install's own thread -------------------------------------------------------------------------------------

InstallFault UpdateInstall::prepare()
{
    if (const InstallFault fault = mount(); fault != InstallFault::None)
        return fault;
    const QString bundle = _mountPoint + u'/' + QFileInfo(_order.installedPath).fileName();
    const InstallFault fault = faultOfNewBundle(bundle, _order.installedPath, _parts.product.version, _services.files);
    return fault != InstallFault::None ? fault : stage();
}

/// What verifies is what gets mounted: a copy of the image that nobody can change between the two.
InstallFault UpdateInstall::mount()
{
    if (_parts.product.needsSignature) {
        QString error;
        _sealed = SealedFile::copyOf(_order.imagePath, largestImage, &error);
        if (!_sealed) {
            systemLog(error);
            return InstallFault::NotMounted;
        }
        if (!isSignatureValid(_parts.product.publicKey, _order.signature, _sealed->bytes())) {
            systemLog(QStringLiteral("the signature of %1 is not the maker's").arg(_order.imagePath));
            return InstallFault::Untrusted;
        }
    }
    const QString folder = _services.mountParent + u'/' + mountFolderName(_order.imagePath);
    _mountPoint = mountDMGFile(*_tool, _order.imagePath, _sealed ? &*_sealed : nullptr, folder);
    _sealed.reset();
    return _mountPoint.size() > 1 ? InstallFault::None : InstallFault::NotMounted;
}

/// The slow copy comes first, beside the old bundle: what is left to do afterwards either happens or does not.
InstallFault UpdateInstall::stage()
{
    BundleFiles& files = _services.files;
    const QFileInfo installed(_order.installedPath);
    const std::optional<QString> staging = files.makeStagingFolder(installed.path());
    if (!staging)
        return InstallFault::NotInstalled;
    _staging = *staging;
    const QString error = files.copy(_mountPoint + u'/' + installed.fileName(), _staging + u'/' + installed.fileName());
    if (error.isEmpty())
        return InstallFault::None;
    systemLog(error);
    return InstallFault::NotInstalled;
}

void UpdateInstall::cleanUp()
{
    BundleFiles& files = _services.files;
    unmountDiskImage(*_tool, std::exchange(_mountPoint, {}));
    if (!_staging.isEmpty())
        files.remove(std::exchange(_staging, {}));
    if (!_order.imagePath.isEmpty())
        files.remove(std::exchange(_order.imagePath, {}));
}

// --- On the event loop's thread --------------------------------------------------------------------------------------

void UpdateInstall::moveOldToTrash()
{
    const std::optional<QString> trashed = _services.files.moveToTrash(_order.installedPath);
    if (trashed)
        _trashed = *trashed;
    else
        systemLog(
            QStringLiteral("%1 cannot be moved to the Trash; waiting until it is gone").arg(_order.installedPath));
    waitForTrash();
}

void UpdateInstall::waitForTrash()
{
    _isWaiting = _services.files.exists(_order.installedPath);
    if (_isWaiting) {
        _worker.after(trashPoll, [this] {
            if (_isWaiting)
                waitForTrash();
        });
        return;
    }
    placeNew();
    if (_services.files.exists(_order.installedPath) && _trashed.isEmpty())
        finish([this] { succeed(); });
    else
        fail(InstallFault::NotInstalled);
}

/// Empties _trashed when the new bundle is in its place; else the old one is there again.
void UpdateInstall::placeNew()
{
    BundleFiles& files = _services.files;
    const QString& path = _order.installedPath;
    if (files.rename(_staging + u'/' + QFileInfo(path).fileName(), path)) {
        _trashed.clear();
        return;
    }
    systemLog(QStringLiteral("the new version cannot be moved to %1").arg(path));
    if (!_trashed.isEmpty() && !files.putBack(_trashed, path))
        systemLog(QStringLiteral("%1 is in the Trash, as %2, and cannot be put back").arg(path, _trashed));
}

void UpdateInstall::cancel()
{
    _isCancelled = true;
    if (std::exchange(_isWaiting, false))
        fail(InstallFault::Stopped);
}

void UpdateInstall::finish(std::function<void()> next)
{
    _worker.run([this, next = std::move(next)] {
        cleanUp();
        return next;
    });
}

void UpdateInstall::succeed()
{
    _window.hide();
    _worker.after(beforeAlert, [this] {
        _parts.alerts.bringToFront();
        showAlert(QStringLiteral("Updater_1.0_Install Finish Title"),
                  QStringLiteral("Updater_1.0_Install Finish Message"),
                  QStringLiteral("Updater_1.0_Install Finish Button"), [this] { launch(); });
    });
}

void UpdateInstall::launch()
{
    systemLog(QStringLiteral("Launching application %1").arg(_order.installedPath));
    if (!(_services.relaunch ? _services.relaunch(_order.installedPath)
                             : _services.workspace.openBundle(_order.installedPath)))
        systemLog(QStringLiteral("%1 does not start").arg(_order.installedPath));
    openAgent();
    _worker.after(beforeEnd, [this] {
        const auto terminate = _services.terminate; // What ends an install may end this object.
        _ended(InstallFault::None);
        if (terminate)
            terminate();
    });
}

/// It quit for the install. One that is not wanted leaves again by itself.
void UpdateInstall::openAgent() const
{
    const QString agent = _order.installedPath + QStringLiteral("/Contents/Agents/QuarrySpotterAgent.app");
    if (_services.files.exists(agent))
        _services.workspace.openBundle(agent);
}

void UpdateInstall::fail(InstallFault fault)
{
    finish([this, fault] {
        _window.hide();
        if (_toldToQuit)
            openAgent();
        tell(fault);
    });
}

void UpdateInstall::tell(InstallFault fault)
{
    if (fault == InstallFault::Stopped) {
        _ended(fault);
        return;
    }
    _parts.alerts.bringToFront();
    showAlert(QStringLiteral("Updater_1.0_Download Error Title"), messageFor(fault), QStringLiteral("OKButton"),
              [this, fault] {
                  // An image that is not the maker's is nothing to fetch by hand.
                  if (fault == InstallFault::NotMounted || fault == InstallFault::NotInstalled)
                      _services.workspace.openAddress(_order.imageUrl.absoluteString());
                  _ended(fault);
              });
}

void UpdateInstall::showAlert(const QString& title, const QString& message, const QString& button,
                              std::function<void()> answered)
{
    const StringTable& texts = _parts.texts;
    _parts.alerts.show({texts.text(title), texts.text(message), {texts.text(button)}},
                       [call = _worker.guarded(std::move(answered))](int) { call(); });
}

} // namespace quarry
