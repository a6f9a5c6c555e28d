#include "session/WindowSchedule.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace quarry {

namespace {

constexpr std::chrono::milliseconds TickInterval(1000);
constexpr double SecondsOfMinute = 60.0;
constexpr qint64 UsualMinutes = 30;

} // namespace

WindowSchedule::WindowSchedule(Parts parts, Start start, std::function<void()> changed)
    : _parts(std::move(parts)), _schedule(_parts.home, _parts.files), _start(std::move(start)),
      _changed(std::move(changed)), _alive(std::make_shared<WindowSchedule*>(this)), _previousTick(_parts.clock.now())
{
}

void WindowSchedule::start()
{
    _parts.timers.every(TickInterval, [alive = std::weak_ptr(_alive)] {
        if (const std::shared_ptr<WindowSchedule*> schedule = alive.lock())
            (*schedule)->tick();
    });
    tick();
}

void WindowSchedule::tick()
{
    const Date now = _parts.clock.now();
    // A clock that was put back leaves a date behind from which the period would never be over.
    if (now < _previousTick && _last)
        _last = std::min(*_last, now);
    _previousTick = now;
    readIfChanged(now);
    startIfDue(now);
    tellIfChanged();
}

void WindowSchedule::readIfChanged(Date now)
{
    const std::optional<FileStamp> stamp = _parts.files.stamp(_parts.home.scheduleFile());
    if (stamp && stamp == _seen)
        return;
    _seen = stamp;
    _settings = stamp ? _schedule.read(now) : Schedule::Settings();
    if (_settings.lastUpdate) {
        const Date last = std::min(*_settings.lastUpdate, now);
        _last = _last ? std::max(*_last, last) : last;
    }
}

void WindowSchedule::startIfDue(Date now)
{
    const std::optional<Date> due = nextLaunch();
    // Counted from the start until the end is known, so that one that fails at once is not started every second.
    if (due && *due <= now && _start())
        _last = now;
}

void WindowSchedule::refreshEnded()
{
    _last = _parts.clock.now();
    tellIfChanged();
}

std::optional<Date> WindowSchedule::nextLaunch() const
{
    if (!_settings.automatic)
        return std::nullopt;
    if (!_last)
        return _previousTick;
    const qint64 minutes = _settings.periodicityMinutes > 0 ? _settings.periodicityMinutes : UsualMinutes;
    return _last->plusSeconds(static_cast<double>(minutes) * SecondsOfMinute);
}

void WindowSchedule::tellIfChanged()
{
    const std::optional<Date> next = nextLaunch();
    if (std::exchange(_told, next) != next && _changed)
        _changed();
}

} // namespace quarry
