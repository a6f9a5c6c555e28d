#pragma once

#include "platform/Pauser.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <vector>

namespace quarry::test {

/// Notes the pauses it is asked for and takes none. Thread-safe.
class RecordingPauser final : public Pauser {
public:
    bool pause(std::chrono::milliseconds duration) override
    {
        {
            const std::lock_guard lock(_mutex);
            _pauses.push_back(duration);
        }
        if (onPause)
            onPause();
        return !_stopped;
    }
    [[nodiscard]] bool isStopped() const override { return _stopped; }
    void stop() { _stopped = true; }
    [[nodiscard]] std::vector<std::chrono::milliseconds> pauses() const
    {
        const std::lock_guard lock(_mutex);
        return _pauses;
    }

    /// Called in each pause; set before any thread uses the pauser.
    std::function<void()> onPause;

private:
    mutable std::mutex _mutex;
    std::vector<std::chrono::milliseconds> _pauses;
    std::atomic<bool> _stopped{false};
};

} // namespace quarry::test
