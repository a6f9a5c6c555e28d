#pragma once

#include "support/ManualTimers.h"

#include <vector>

namespace quarry::test {

/// An event loop in which every delay is over at once: the order of things without their waiting. Delays are noted.
class EagerTimers final : public EventTimers {
public:
    void every(std::chrono::milliseconds, Call) override {}
    void after(std::chrono::milliseconds delay, Call call) override
    {
        delays.push_back(delay);
        post(std::move(call));
    }
    void post(Call call) override { _queue.post(std::move(call)); }
    template <typename Done>
    bool runUntil(const Done& isDone)
    {
        return _queue.runUntil(isDone);
    }

    std::vector<std::chrono::milliseconds> delays;

private:
    ManualTimers _queue;
};

} // namespace quarry::test
