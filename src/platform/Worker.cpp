#include "platform/Worker.h"

#include <utility>

namespace quarry {

void Worker::add(Job job)
{
    const std::lock_guard lock(_mutex);
    if (_stopped)
        return;
    _jobs.push_back(std::move(job));
    if (!_thread.joinable())
        _thread = std::thread([this] { run(); });
    _changed.notify_one();
}

void Worker::stop()
{
    std::deque<Job> dropped;
    {
        const std::lock_guard lock(_mutex);
        _stopped = true;
        std::swap(dropped, _jobs);
        _changed.notify_one();
    }
    if (_thread.joinable())
        _thread.join();
}

void Worker::run()
{
    std::unique_lock lock(_mutex);
    while (true) {
        _changed.wait(lock, [this] { return _stopped || !_jobs.empty(); });
        if (_stopped)
            return;
        Job job = std::move(_jobs.front());
        _jobs.pop_front();
        lock.unlock();
        job();
        job = nullptr; // What it holds goes away here, not under the lock.
        lock.lock();
    }
}

} // namespace quarry
