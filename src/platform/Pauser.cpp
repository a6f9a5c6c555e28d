#include "platform/Pauser.h"

namespace quarry {

bool ThreadPauser::pause(std::chrono::milliseconds duration)
{
    std::unique_lock lock(_mutex);
    return !_condition.wait_for(lock, duration, [this] { return _stopped; });
}

bool ThreadPauser::isStopped() const
{
    const std::lock_guard lock(_mutex);
    return _stopped;
}

void ThreadPauser::stop()
{
    {
        const std::lock_guard lock(_mutex);
        _stopped = true;
    }
    _condition.notify_all();
}

} // namespace quarry
