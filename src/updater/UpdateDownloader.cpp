#include "updater/UpdateDownloader.h"

#include "updater/TrustedAddress.h"

namespace quarry {

namespace {

using Limits = CurlPageLoader::Limits;
using std::chrono::seconds;

/// An HTTPS address is never left for a plain one, and one on this machine never for another.
class Channel final {
public:
    explicit Channel(Limits limits) : _loopback(limits, isLoopbackIp), _secure(secured(limits)) {}

    [[nodiscard]] CurlPageLoader* loaderFor(const QByteArray& address)
    {
        const Url url = Url::fromStored(QString::fromUtf8(address));
        if (!isTrustedUpdateAddress(url))
            return nullptr;
        return isLoopbackAddress(url) ? &_loopback : &_secure;
    }
    void stop()
    {
        _loopback.stop();
        _secure.stop();
    }

private:
    static Limits secured(Limits limits)
    {
        limits.secureOnly = true;
        return limits;
    }

    CurlPageLoader _loopback;
    CurlPageLoader _secure;
};

LoadedPage refused()
{
    LoadedPage page;
    page.error = QStringLiteral("the address is not HTTPS");
    return page;
}

class CurlUpdateDownloader final : public UpdateDownloader {
public:
    explicit CurlUpdateDownloader(const Limits& limits) : _large(limits) {}

    LoadedPage load(const QByteArray& address) override
    {
        CurlPageLoader* const loader = _small.loaderFor(address);
        return loader ? loader->load(address) : refused();
    }
    LoadedPage download(const QByteArray& address, ReplyReceiver& receiver) override
    {
        CurlPageLoader* const loader = _large.loaderFor(address);
        return loader ? loader->load(address, receiver) : refused();
    }
    void stop() override
    {
        _small.stop();
        _large.stop();
    }

private:
    Channel _small{Limits{seconds(20), seconds(20), seconds(60), std::size_t{64} * 1024, 5}};
    Channel _large;
};

} // namespace

std::shared_ptr<UpdateLoader> makeUpdateLoader()
{
    return makeUpdateDownloader();
}

std::shared_ptr<UpdateDownloader> makeUpdateDownloader()
{
    return makeUpdateDownloader(Limits{seconds(60), seconds(30), std::chrono::hours(12), std::size_t{1} << 30, 10});
}

std::shared_ptr<UpdateDownloader> makeUpdateDownloader(const Limits& limits)
{
    return std::make_shared<CurlUpdateDownloader>(limits);
}

} // namespace quarry
