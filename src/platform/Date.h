#pragma once

#include <QString>

#include <chrono>
#include <compare>

namespace quarry {

/// A point in time: seconds since 2001-01-01 00:00:00 UTC, the epoch of every date the product stores.
/// A plain value; negative before the epoch. Seconds are kept as a double, as archives hold them, so that a
/// date read from a file is written back bit for bit.
class Date final {
public:
    /// The reference date itself, 2001-01-01 00:00:00 UTC: on a query it means "never updated".
    constexpr Date() = default;
    constexpr explicit Date(double secondsSinceReference) : _seconds(secondsSinceReference) {}

    [[nodiscard]] static constexpr Date reference() { return Date(); }
    /// From seconds since 1970-01-01 UTC.
    [[nodiscard]] static constexpr Date fromUnixSeconds(double seconds) { return Date(seconds - EpochOffset); }

    [[nodiscard]] constexpr double secondsSinceReference() const { return _seconds; }
    [[nodiscard]] constexpr double unixSeconds() const { return _seconds + EpochOffset; }
    /// Seconds from the other date to this one; positive when this one is later.
    [[nodiscard]] constexpr double secondsSince(Date other) const { return _seconds - other._seconds; }
    [[nodiscard]] constexpr Date plusSeconds(double seconds) const { return Date(_seconds + seconds); }

    /// "2026-11-21 03:33:54 +0100": local time with its offset, the form of the log file.
    [[nodiscard]] QString description() const;
    /// "2026-11-21T02:33:54Z", for machine-readable output.
    [[nodiscard]] QString isoText() const;

    friend constexpr bool operator==(Date, Date) = default;
    friend constexpr auto operator<=>(Date, Date) = default;

private:
    static constexpr double EpochOffset = 978307200.0;
    double _seconds = 0.0;
};

} // namespace quarry
