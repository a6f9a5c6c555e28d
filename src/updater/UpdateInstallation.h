#pragma once

#include "updater/UpdateDownload.h"
#include "updater/UpdateInstall.h"

#include <QString>

#include <functional>
#include <memory>

namespace quarry {

/// An accepted offer: the download with its progress in the window, then the install. Lives on the event loop's thread.
class UpdateInstallation final : public DownloadDelegate {
public:
    enum class End {
        Installed,
        Failed, ///< The user was told, and the old version is still there.
        Cancelled,
    };

    /// Begins at once. `parts` and `window` outlive the object. `ended` is called last.
    UpdateInstallation(const UpdaterParts& parts, const UpdateInfos& infos, const QString& installedPath,
                       UpdaterWindow& window, std::function<void(End)> ended);

    /// Ends a download and leaves nothing of it, and an install that has changed nothing yet.
    void cancel();
    /// From the end of the download on.
    [[nodiscard]] bool isInstalling() const { return _install != nullptr; }
    /// Why the download failed, one line for a person; empty when it did not.
    [[nodiscard]] const QString& fault() const { return _fault; }

private:
    void downloadDidBegin() override;
    void downloadDidReceiveResponse(std::int64_t expectedLength) override;
    void downloadDidReceiveDataOfLength(std::int64_t length) override;
    void downloadDidFinish(const QByteArray& signature) override;
    void downloadDidFailWithError(const QString& description, const QString& failureReason) override;

    void begin();
    void setStatus(const QString& key);

    const UpdaterParts& _parts;
    InstallationParts& _services;
    UpdateInfos _infos;
    QString _installedPath;
    QString _imagePath;
    UpdaterWindow& _window;
    std::function<void(End)> _ended;
    QString _fault;
    std::unique_ptr<UpdateDownload> _downloader;
    std::unique_ptr<UpdateInstall> _install;
};

} // namespace quarry
