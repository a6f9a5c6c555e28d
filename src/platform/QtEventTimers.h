#pragma once

#include "platform/EventTimers.h"

#include <QObject>

namespace quarry {

/// Timers of Qt's event loop, coarse to a twentieth of their interval. Make it on the thread of the loop, after the
/// application object. Nothing is called after it went away.
class QtEventTimers final : public EventTimers {
public:
    void every(std::chrono::milliseconds interval, Call call) override;
    void after(std::chrono::milliseconds delay, Call call) override;
    void post(Call call) override;

private:
    QObject _context; ///< Owns the timers; calls end with it.
};

} // namespace quarry
