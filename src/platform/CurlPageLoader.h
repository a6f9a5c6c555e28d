#pragma once

#include "platform/PageLoader.h"

#include <QByteArray>

#include <atomic>
#include <chrono>
#include <functional>

namespace quarry {

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

    /// Ends every running and every later load within a fraction of a second; they answer "stopped". Thread-safe,
    /// and may be called from a signal handler.
    void stop() { _stopped = true; }

private:
    Limits _limits;
    AddressRule _mayConnect;
    QByteArray _directHosts; ///< Hosts that no proxy is asked for.
    std::atomic<bool> _stopped{false};
    static_assert(std::atomic<bool>::is_always_lock_free);
};

} // namespace quarry
