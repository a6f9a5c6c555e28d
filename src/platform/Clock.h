#pragma once

#include "platform/Date.h"

#include <chrono>

namespace quarry {

/// Where the time of day comes from, so that rules over minutes, hours and days are tested without waiting.
/// Implementations may be called from any thread.
class Clock {
public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual Date now() const = 0;
};

/// The machine's clock, shifted by a fixed number of seconds (0 for real use; demonstrations shift it).
class SystemClock final : public Clock {
public:
    explicit SystemClock(double offsetSeconds = 0.0) : _offset(offsetSeconds) {}
    [[nodiscard]] Date now() const override;

private:
    double _offset;
};

} // namespace quarry
