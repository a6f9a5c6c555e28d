#include "session/ChartLoader.h"

#include <utility>

namespace quarry {

ChartLoader::ChartLoader(EventTimers& timers, Clock& clock, Ready ready)
    : _clock(clock), _ready(std::move(ready)), _worker(timers)
{
}

ChartLoader::~ChartLoader()
{
    if (_cancelled)
        *_cancelled = true;
}

void ChartLoader::load(const QueryCorePtr& node)
{
    if (_cancelled)
        *_cancelled = true;
    _cancelled = std::make_shared<ResultChart::Cancelled>(false);
    // The user's time zone may be another one next time.
    _worker.run([this, node, cancelled = _cancelled, now = _clock.now(),
                 zone = QTimeZone::systemTimeZone()]() -> LoopWorker::Call {
        const ResultChart chart = ResultChart::of(node, now, zone, cancelled.get());
        return [this, chart, cancelled] {
            if (!*cancelled)
                _ready(chart);
        };
    });
}

} // namespace quarry
