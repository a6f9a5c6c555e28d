#pragma once

#include "platform/PageLoader.h"

#include <QByteArray>

#include <atomic>
#include <chrono>

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

    CurlPageLoader() : CurlPageLoader(Limits()) {}
    explicit CurlPageLoader(const Limits& limits);
    ~CurlPageLoader() override;

    [[nodiscard]] LoadedPage load(const QByteArray& address) override;

    /// Ends every running and every later load within a fraction of a second; they answer "stopped". Thread-safe,
    /// and may be called from a signal handler.
    void stop() { _stopped = true; }

private:
    Limits _limits;
    QByteArray _directHosts; ///< Hosts that no proxy is asked for.
    std::atomic<bool> _stopped{false};
    static_assert(std::atomic<bool>::is_always_lock_free);
};

} // namespace quarry
