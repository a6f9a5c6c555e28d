#pragma once

#include "platform/Clock.h"

#include <atomic>

namespace quarry::test {

/// A clock that stands still until it is told the time. Thread-safe.
class SettableClock final : public Clock {
public:
    explicit SettableClock(Date now = Date(800000000.0)) : _seconds(now.secondsSinceReference()) {}
    [[nodiscard]] Date now() const override { return Date(_seconds); }
    void set(Date now) { _seconds = now.secondsSinceReference(); }
    void advance(double seconds) { _seconds = _seconds + seconds; }

private:
    std::atomic<double> _seconds;
};

} // namespace quarry::test
