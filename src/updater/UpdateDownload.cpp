#include "updater/UpdateDownload.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <atomic>
#include <utility>

namespace quarry {

/// Writes what comes and tells the delegate. Counts that the event loop has not taken yet are added up.
class UpdateDownload::Receiver final : public ReplyReceiver {
public:
    Receiver(QSaveFile& file, DownloadDelegate& delegate, const LoopWorker& worker)
        : _file(file), _delegate(delegate), _worker(worker)
    {
    }

    void response(std::int64_t expectedLength) override
    {
        _worker.post([&delegate = _delegate, expectedLength] { delegate.downloadDidReceiveResponse(expectedLength); });
    }
    bool take(const char* data, std::size_t size) override
    {
        const auto length = static_cast<qint64>(size);
        if (_file.write(data, length) != length) {
            _fault = _file.errorString();
            return false;
        }
        if (_waiting->fetch_add(length) == 0)
            _worker.post([&delegate = _delegate, waiting = _waiting] {
                delegate.downloadDidReceiveDataOfLength(waiting->exchange(0));
            });
        return true;
    }
    /// Why nothing more could be written; empty when it could.
    [[nodiscard]] QString fault() const { return _fault; }

private:
    QSaveFile& _file;
    DownloadDelegate& _delegate;
    const LoopWorker& _worker;
    QString _fault;
    std::shared_ptr<std::atomic<std::int64_t>> _waiting = std::make_shared<std::atomic<std::int64_t>>(0);
};

UpdateDownload::UpdateDownload(std::shared_ptr<UpdateDownloader> downloader, Url address, QString path,
                               Signature signature, EventTimers& events, DownloadDelegate& delegate)
    : _downloader(std::move(downloader)), _address(std::move(address)), _path(std::move(path)), _signature(signature),
      _delegate(delegate), _worker(events)
{
    _worker.run([this] { return run(); });
}

UpdateDownload::~UpdateDownload()
{
    _downloader->stop();
    _worker.finish();
    if (_complete && !_handedOver)
        QFile::remove(_path);
}

LoopWorker::Call UpdateDownload::failure(const QString& description, const QString& reason)
{
    return [this, description, reason] { _delegate.downloadDidFailWithError(description, reason); };
}

LoopWorker::Call UpdateDownload::success(const QByteArray& signature)
{
    return [this, signature] {
        _handedOver = true;
        _delegate.downloadDidFinish(signature);
    };
}

LoopWorker::Call UpdateDownload::run()
{
    _worker.post([this] { _delegate.downloadDidBegin(); });
    QByteArray signature;
    if (_signature == Signature::Beside) {
        const LoadedPage page =
            _downloader->load(Url::fromStored(_address.absoluteString() + QStringLiteral(".sig")).requestBytes());
        if (!page.ok())
            return failure(QStringLiteral("the image has no signature"), page.error);
        signature = page.bytes;
    }
    // A link under that name would lead the bytes somewhere else.
    if (QFileInfo(_path).isSymLink())
        QFile::remove(_path);
    QSaveFile file(_path);
    if (!file.open(QIODevice::WriteOnly))
        return failure(QStringLiteral("%1 cannot be written").arg(_path), file.errorString());
    Receiver receiver(file, _delegate, _worker);
    const LoadedPage page = _downloader->download(_address.requestBytes(), receiver);
    if (!page.ok())
        file.cancelWriting();
    if (!receiver.fault().isEmpty())
        return failure(QStringLiteral("%1 cannot be written").arg(_path), receiver.fault());
    if (!page.ok())
        return failure(QStringLiteral("%1 was not loaded").arg(_address.absoluteString()), page.error);
    if (!file.commit())
        return failure(QStringLiteral("%1 cannot be written").arg(_path), file.errorString());
    _complete = true;
    return success(signature);
}

} // namespace quarry
