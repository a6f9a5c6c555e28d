#pragma once

#include "platform/PageLoader.h"

#include <QByteArray>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>

namespace quarry {

/// Takes a reply piece by piece, so that a large one never lies in memory. Called on the loading thread.
class ReplyReceiver {
public:
    virtual ~ReplyReceiver() = default;
    /// Once, before the first piece: how many bytes will come; -1 when the host does not tell.
    virtual void response(std::int64_t expectedLength) = 0;
    /// False ends the transfer.
    [[nodiscard]] virtual bool take(const char* data, std::size_t size) = 0;
};

/// The page loader over libcurl: one easy handle a thread, so that a thread's requests to one host share their
/// connection. Proxies come from the environment, but never for the machine itself.
class CurlPageLoader final : public PageLoader {
public:
    struct Limits {
        std::chrono::milliseconds withoutData{60000}; ///< From the request on, too.
        std::chrono::milliseconds connecting{30000};
        std::chrono::milliseconds total{600000};   ///< Ends what trickles in for ever.
        std::size_t bytes = std::size_t(16) << 20; ///< After decompression.
        long redirects = 10;
        bool secureOnly = false; ///< HTTPS only, after a redirect too.
        /// Of the body of a reply with a status of 400 or above so much is kept, and not waited for more; 0: it is not
        /// waited for at all.
        std::size_t errorBytes = 0;
    };

    /// Whether a loader may connect to an IP address.
    using AddressRule = std::function<bool(const QByteArray& ip)>;

    CurlPageLoader() : CurlPageLoader(Limits()) {}
    explicit CurlPageLoader(const Limits& limits) : CurlPageLoader(limits, {}) {}
    /// A loader that connects, redirects included, only where the rule allows it; an empty rule allows everything. With
    /// a rule no proxy is asked: what a proxy connects to cannot be seen.
    CurlPageLoader(const Limits& limits, AddressRule mayConnect);
    ~CurlPageLoader() override;

    [[nodiscard]] LoadedPage load(const QByteArray& address) override;
    /// Hands the reply's bytes, as the host stores them, to the receiver; the page that is returned has none.
    [[nodiscard]] LoadedPage load(const QByteArray& address, ReplyReceiver& receiver);

    /// Ends every running and every later load within a fraction of a second; they answer "stopped". Thread-safe,
    /// and may be called from a signal handler.
    void stop() { _stopped = true; }

private:
    LoadedPage loadInto(ReplyReceiver* receiver, const QByteArray& address);

    Limits _limits;
    AddressRule _mayConnect;
    QByteArray _directHosts; ///< Hosts that no proxy is asked for.
    std::atomic<bool> _stopped{false};
    static_assert(std::atomic<bool>::is_always_lock_free);
};

} // namespace quarry
