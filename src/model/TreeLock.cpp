#include "model/TreeLock.h"

#include <mutex>
#include <utility>
#include <vector>

namespace quarry {

namespace {

std::recursive_mutex& treeMutex()
{
    static std::recursive_mutex mutex;
    return mutex;
}

/// How often this thread holds the lock, and what it has put off until it lets go.
struct ThreadState {
    int depth = 0;
    bool isPostponed = false;
    std::vector<std::function<void()>> jobs;
};

ThreadState& threadState()
{
    thread_local ThreadState state;
    return state;
}

} // namespace

TreeLock::TreeLock()
{
    treeMutex().lock();
    ++threadState().depth;
}

TreeLock::~TreeLock()
{
    ThreadState& state = threadState();
    std::vector<std::function<void()>> jobs;
    if (--state.depth == 0 && !state.isPostponed)
        jobs.swap(state.jobs);
    treeMutex().unlock();
    for (const std::function<void()>& job : jobs)
        job();
}

void TreeLock::afterwards(std::function<void()> job)
{
    ThreadState& state = threadState();
    if (state.depth == 0 && !state.isPostponed)
        job();
    else
        state.jobs.push_back(std::move(job));
}

TreeLock::Postponed::Postponed()
{
    threadState().isPostponed = true;
}

TreeLock::Postponed::~Postponed()
{
    drop();
    threadState().isPostponed = false;
}

void TreeLock::Postponed::drop()
{
    threadState().jobs.clear();
}

void TreeLock::Postponed::run()
{
    const std::vector<std::function<void()>> jobs = std::exchange(threadState().jobs, {});
    for (const std::function<void()>& job : jobs)
        job();
}

} // namespace quarry
