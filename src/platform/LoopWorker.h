#pragma once

#include "platform/EventTimers.h"
#include "platform/Worker.h"

#include <functional>
#include <memory>

namespace quarry {

/// A worker whose work comes back to the event loop: what is to happen next runs on the loop's thread, where the object
/// lives. Once it is gone, nothing of it happens any more.
class LoopWorker final {
public:
    using Call = std::function<void()>;

    /// `events` outlives the worker.
    explicit LoopWorker(EventTimers& events) : _events(events) {}
    /// Waits for the work that runs: whoever ends it early tells it to stop first.
    ~LoopWorker() = default;
    LoopWorker(const LoopWorker&) = delete;
    LoopWorker& operator=(const LoopWorker&) = delete;

    /// Runs the work on the worker's thread, behind what was given to it before, then what the work returns, which may
    /// be empty, on the event loop.
    void run(std::function<Call()> work);
    /// Drops the work that waits, and returns when the one that runs is done. What it returned still happens; no more
    /// work is taken.
    void finish() { _worker.stop(); }
    /// Runs the call on the event loop. Thread-safe, so that the work can tell how it goes on.
    void post(Call call) const;
    /// The same, later. From the event loop's thread only.
    void after(std::chrono::milliseconds delay, Call call) const;
    /// A call that does nothing once the worker is gone. It is made on the event loop's thread, or by the work.
    [[nodiscard]] Call guarded(Call call) const;

private:
    EventTimers& _events;
    std::shared_ptr<int> _alive = std::make_shared<int>(0); ///< Looked at on the event loop's thread only.
    Worker _worker;                                         ///< Goes first: its work uses the rest.
};

} // namespace quarry
