#include "updater/UpdateInstallation.h"

#include "platform/SystemLog.h"
#include "updater/DownloadPlace.h"

#include <QDir>

#include <utility>

namespace quarry {

UpdateInstallation::UpdateInstallation(const UpdaterParts& parts, const UpdateInfos& infos,
                                       const QString& installedPath, UpdaterWindow& window,
                                       std::function<void(End)> ended)
    : _parts(parts), _services(*parts.installation), _infos(infos), _installedPath(installedPath),
      _imagePath(_services.downloadsFolder + u'/' + downloadFileName(infos.fileUrl)), _window(window),
      _ended(std::move(ended))
{
    begin();
}

void UpdateInstallation::begin()
{
    _window.center();
    _window.setProgressBarIndeterminate(true);
    setStatus(QStringLiteral("Updater_1.0_Status Preparing"));
    _window.orderFrontRegardless();
    systemLog(QStringLiteral("Downloading file: %1 in path %2").arg(_infos.fileUrl.absoluteString(), _imagePath));
    QDir().mkpath(_services.downloadsFolder);
    const auto signature =
        _parts.product.needsSignature ? UpdateDownload::Signature::Beside : UpdateDownload::Signature::None;
    _downloader = std::make_unique<UpdateDownload>(_services.makeDownloader(), _infos.fileUrl, _imagePath, signature,
                                                   _parts.events, *this);
}

void UpdateInstallation::setStatus(const QString& key)
{
    _window.setStatus(_parts.texts.text(key));
}

void UpdateInstallation::downloadDidBegin()
{
    setStatus(QStringLiteral("Updater_1.0_Status Downloading"));
}

void UpdateInstallation::downloadDidReceiveResponse(std::int64_t expectedLength)
{
    _window.setProgressBarIndeterminate(false, 0, static_cast<double>(expectedLength), 0);
    _window.setDownloadStartTime();
}

void UpdateInstallation::downloadDidReceiveDataOfLength(std::int64_t length)
{
    _window.incrementProgressBarValue(static_cast<double>(length));
}

void UpdateInstallation::downloadDidFinish(const QByteArray& signature)
{
    _window.setProgressBarIndeterminate(true);
    setStatus(QStringLiteral("Updater_1.0_Status Installing"));
    _downloader.reset();
    _install = std::make_unique<UpdateInstall>(
        _parts, InstallOrder{_imagePath, signature, _infos.fileUrl, _installedPath}, _window,
        [this](InstallFault fault) {
            const bool stopped = fault == InstallFault::Stopped;
            _ended(fault == InstallFault::None ? End::Installed : stopped ? End::Cancelled : End::Failed);
        });
    _install->installUpdate();
}

void UpdateInstallation::downloadDidFailWithError(const QString& description, const QString& failureReason)
{
    _window.hide();
    _downloader.reset();
    _fault = description + QStringLiteral(": ") + failureReason;
    systemLog(QStringLiteral("download:didFailWithError:, download failed, %1 - %2").arg(description, failureReason));
    if (!_infos.productDownloadUrl.isEmpty())
        _services.workspace.openAddress(_infos.productDownloadUrl.absoluteString());
    _ended(End::Failed);
}

void UpdateInstallation::cancel()
{
    _window.hide();
    if (_install) {
        _install->cancel();
        return;
    }
    if (std::exchange(_downloader, nullptr))
        _ended(End::Cancelled);
}

} // namespace quarry
