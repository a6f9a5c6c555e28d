#pragma once

#include "platform/EventTimers.h"

#include <QObject>

#include <deque>
#include <mutex>

namespace quarry {

/// Timers of Qt's event loop, coarse to a twentieth of their interval. Make it on the thread of the loop, after the
/// application object. Nothing is called after it went away.
class QtEventTimers final : public EventTimers {
public:
    void every(std::chrono::milliseconds interval, Call call) override;
    void after(std::chrono::milliseconds delay, Call call) override;
    void post(Call call) override;

private:
    /// Owns the timers; calls end with it. What is posted waits here and not in Qt's events: the order between the
    /// threads is then that of a lock which ThreadSanitizer knows.
    class Context final : public QObject {
    public:
        void add(Call call);

    protected:
        void customEvent(QEvent* event) override;

    private:
        std::mutex _mutex;
        std::deque<Call> _calls;
    };

    Context _context;
};

} // namespace quarry
