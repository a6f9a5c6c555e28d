#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace quarry {

/// One thread that does jobs in their order. Jobs may be added from any thread and must not throw.
class Worker final {
public:
    using Job = std::function<void()>;

    Worker() = default;
    ~Worker() { stop(); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Behind those that wait. Dropped after stop().
    void add(Job job);
    /// Drops what waits, and returns when the job that runs is done.
    void stop();

private:
    void run();

    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Job> _jobs;
    bool _stopped = false;
    std::thread _thread; ///< Started by the first job.
};

} // namespace quarry
