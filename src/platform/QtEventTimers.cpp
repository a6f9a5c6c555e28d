#include "platform/QtEventTimers.h"

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
    QMetaObject::invokeMethod(&_context, std::move(call), Qt::QueuedConnection);
}

} // namespace quarry
