#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quarry {

/// The politeness pauses between page requests and between starts of updates, behind an interface so that
/// tests do not wait. Called from any thread.
class Pauser {
public:
    virtual ~Pauser() = default;
    /// Waits for that long. Returns false at once, or early, when the program has been asked to stop.
    virtual bool pause(std::chrono::milliseconds duration) = 0;
    /// True once the program has been asked to stop: nothing more is to be started.
    [[nodiscard]] virtual bool isStopped() const = 0;
};

/// Really waits; stop() ends every running and every later pause.
class ThreadPauser final : public Pauser {
public:
    bool pause(std::chrono::milliseconds duration) override;
    [[nodiscard]] bool isStopped() const override;
    /// Thread-safe, but not from a signal handler.
    void stop();

private:
    mutable std::mutex _mutex;
    std::condition_variable _condition;
    bool _stopped = false;
};

} // namespace quarry
