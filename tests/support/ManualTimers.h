#pragma once

#include "platform/EventTimers.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace quarry::test {

/// An event loop for tests whose time passes when it is told to. post() is thread-safe.
class ManualTimers final : public EventTimers {
public:
    void every(std::chrono::milliseconds interval, Call call) override
    {
        _timers.push_back({_now + interval, interval, std::move(call)});
    }
    void after(std::chrono::milliseconds delay, Call call) override
    {
        _timers.push_back({_now + delay, std::chrono::milliseconds(0), std::move(call)});
    }
    void post(Call call) override
    {
        const std::lock_guard lock(_mutex);
        _posted.push_back(std::move(call));
        _came.notify_all();
    }

    /// Lets time pass and calls what is due in it, a repeating timer once.
    void advance(std::chrono::milliseconds time)
    {
        _now += time;
        std::vector<Call> due;
        for (Timer& timer : _timers) {
            if (timer.due > _now)
                continue;
            due.push_back(timer.call);
            timer.due = timer.interval.count() > 0 ? _now + timer.interval : std::chrono::milliseconds::max();
        }
        for (const Call& call : due)
            call();
    }
    /// Runs what was posted by now.
    void runPosted()
    {
        std::deque<Call> posted;
        {
            const std::lock_guard lock(_mutex);
            posted.swap(_posted);
        }
        for (const Call& call : posted)
            call();
    }
    /// Runs what was posted, waiting for it, until `isDone`; false when nothing came for half a minute.
    template <typename Done>
    bool runUntil(const Done& isDone)
    {
        while (!isDone()) {
            std::unique_lock lock(_mutex);
            if (!_came.wait_for(lock, std::chrono::seconds(30), [this] { return !_posted.empty(); }))
                return false;
            const Call call = std::move(_posted.front());
            _posted.pop_front();
            lock.unlock();
            call();
        }
        return true;
    }

private:
    struct Timer {
        std::chrono::milliseconds due;
        std::chrono::milliseconds interval;
        Call call;
    };

    std::chrono::milliseconds _now{0};
    std::vector<Timer> _timers;
    std::mutex _mutex;
    std::condition_variable _came;
    std::deque<Call> _posted;
};

} // namespace quarry::test
