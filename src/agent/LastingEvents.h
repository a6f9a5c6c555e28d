#pragma once

#include "platform/EventTimers.h"

#include <memory>

namespace quarry {

/// Timers of an event loop that end with their owner: no call comes after end(), also none that was queued before.
class LastingEvents final : public EventTimers {
public:
    explicit LastingEvents(EventTimers& events) : _events(events) {}

    void every(std::chrono::milliseconds interval, Call call) override
    {
        _events.every(interval, guarded(std::move(call)));
    }
    void after(std::chrono::milliseconds delay, Call call) override { _events.after(delay, guarded(std::move(call))); }
    void post(Call call) override { _events.post(guarded(std::move(call))); }

    void end() { _alive.reset(); }
    /// The call as one that does nothing after the end. For the thread of the loop.
    [[nodiscard]] Call guarded(Call call) const
    {
        return [alive = std::weak_ptr<int>(_alive), call = std::move(call)] {
            if (!alive.expired())
                call();
        };
    }

private:
    EventTimers& _events;
    std::shared_ptr<int> _alive = std::make_shared<int>();
};

} // namespace quarry
