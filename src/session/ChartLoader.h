#pragma once

#include "platform/Clock.h"
#include "platform/LoopWorker.h"
#include "session/ResultChart.h"

#include <functional>
#include <memory>

namespace quarry {

/// Counts charts for a screen on a thread of its own, where a newer request ends the older one. Main thread only.
class ChartLoader final {
public:
    using Ready = std::function<void(const ResultChart& chart)>;

    /// `timers` and `clock` must outlive the object. `ready` gets the chart of the latest request, later.
    ChartLoader(EventTimers& timers, Clock& clock, Ready ready);
    ~ChartLoader();

    void load(const QueryCorePtr& node);

private:
    Clock& _clock;
    Ready _ready;
    std::shared_ptr<ResultChart::Cancelled> _cancelled;
    LoopWorker _worker;
};

} // namespace quarry
