#pragma once

#include <chrono>
#include <functional>

namespace quarry {

/// Timers and queued calls of an event loop, so that what happens in time is tested without waiting. Everything runs on
/// the thread of the loop; post() may be called from any thread, the others only from the loop's own.
class EventTimers {
public:
    using Call = std::function<void()>;

    virtual ~EventTimers() = default;
    /// Again and again, until the object goes away. A machine that slept, or a call that took long, brings one call,
    /// not one for each that was missed.
    virtual void every(std::chrono::milliseconds interval, Call call) = 0;
    virtual void after(std::chrono::milliseconds delay, Call call) = 0;
    /// Behind what is queued now.
    virtual void post(Call call) = 0;
};

} // namespace quarry
