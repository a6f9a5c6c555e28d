#include "platform/QtEventTimers.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>

#include <algorithm>
#include <limits>

namespace quarry {

namespace {

/// A timer counts in an int: a wait beyond it, of weeks, ends early instead of at once.
std::chrono::milliseconds bounded(std::chrono::milliseconds time)
{
    return std::clamp(time, std::chrono::milliseconds(0), std::chrono::milliseconds(std::numeric_limits<int>::max()));
}

} // namespace

void QtEventTimers::every(std::chrono::milliseconds interval, Call call)
{
    auto* timer = new QTimer(&_context);
    timer->setInterval(bounded(interval));
    QObject::connect(timer, &QTimer::timeout, &_context, std::move(call));
    timer->start();
}

void QtEventTimers::after(std::chrono::milliseconds delay, Call call)
{
    QTimer::singleShot(bounded(delay), &_context, std::move(call));
}

void QtEventTimers::post(Call call)
{
    _context.add(std::move(call));
}

void QtEventTimers::Context::add(Call call)
{
    {
        const std::lock_guard lock(_mutex);
        _calls.push_back(std::move(call));
    }
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

void QtEventTimers::Context::customEvent(QEvent* event)
{
    static_cast<void>(event); // One for each call, in their order.
    Call call;
    {
        const std::lock_guard lock(_mutex);
        call = std::move(_calls.front());
        _calls.pop_front();
    }
    call();
}

} // namespace quarry
