#pragma once

#include "platform/LoopWorker.h"
#include "text/Url.h"
#include "updater/UpdateDownloader.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

namespace quarry {

/// Hears of a download on the event loop's thread.
class DownloadDelegate {
public:
    virtual ~DownloadDelegate() = default;
    virtual void downloadDidBegin() = 0;
    /// -1 when the size is unknown.
    virtual void downloadDidReceiveResponse(std::int64_t expectedLength) = 0;
    virtual void downloadDidReceiveDataOfLength(std::int64_t length) = 0;
    /// The file is complete. `signature` is what lay beside it, empty when none was asked for.
    virtual void downloadDidFinish(const QByteArray& signature) = 0;
    virtual void downloadDidFailWithError(const QString& description, const QString& failureReason) = 0;
};

/// One download of a disk image, on a thread of its own. The file has its name only when it is complete: until then,
/// and when it fails or is cancelled, a file that was there before stays as it is and nothing else is left.
class UpdateDownload final {
public:
    enum class Signature { None, Beside }; ///< Whether the address + ".sig" is fetched, too.

    /// Begins at once. `events` and `delegate` outlive the download.
    UpdateDownload(std::shared_ptr<UpdateDownloader> downloader, Url address, QString path, Signature signature,
                   EventTimers& events, DownloadDelegate& delegate);
    /// Cancels a download that runs, within a fraction of a second; the delegate hears nothing more.
    ~UpdateDownload();
    UpdateDownload(const UpdateDownload&) = delete;
    UpdateDownload& operator=(const UpdateDownload&) = delete;

private:
    class Receiver;
    LoopWorker::Call run();
    [[nodiscard]] LoopWorker::Call failure(const QString& description, const QString& reason);
    [[nodiscard]] LoopWorker::Call success(const QByteArray& signature);

    std::shared_ptr<UpdateDownloader> _downloader;
    Url _address;
    QString _path;
    Signature _signature;
    DownloadDelegate& _delegate;
    bool _complete = false;   ///< The file has its name. Written by the work, read once that has ended.
    bool _handedOver = false; ///< The delegate knows of it.
    LoopWorker _worker;
};

} // namespace quarry
