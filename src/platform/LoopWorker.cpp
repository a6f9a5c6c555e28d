#include "platform/LoopWorker.h"

#include <utility>

namespace quarry {

void LoopWorker::run(std::function<Call()> work)
{
    _worker.add([this, work = std::move(work)] {
        if (Call next = work())
            post(std::move(next));
    });
}

void LoopWorker::post(Call call) const
{
    _events.post(guarded(std::move(call)));
}

void LoopWorker::after(std::chrono::milliseconds delay, Call call) const
{
    _events.after(delay, guarded(std::move(call)));
}

LoopWorker::Call LoopWorker::guarded(Call call) const
{
    return [alive = std::weak_ptr(_alive), call = std::move(call)] {
        if (!alive.expired())
            call();
    };
}

} // namespace quarry
