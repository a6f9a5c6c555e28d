#pragma once

#include "archive/StringTable.h"
#include "platform/Clock.h"
#include "platform/Date.h"

#include <QString>

#include <optional>

namespace quarry {

/// The arithmetic behind the progress bar and its line: bytes, megabytes, and the seconds that remain. Main thread
/// only.
class DownloadProgress final {
public:
    /// Both outlive the object.
    DownloadProgress(const Clock& clock, const StringTable& texts);

    /// The bar's range and value in bytes; a maximum of 0 or less when the size is unknown. A minimum of 0 begins a new
    /// download: no time has begun yet.
    void set(double minValue, double maxValue, double currentValue);
    void setDownloadStartTime();
    /// Cancelled: no time is told any more.
    void clearDownloadStartTime() { _downloadStartTime.reset(); }
    /// Counts the bytes and returns the progress line: what there was before them. An estimate of the remaining seconds
    /// is told after the first 3 seconds, and never goes up.
    [[nodiscard]] QString increment(double bytes);

    [[nodiscard]] double value() const { return _value; }
    [[nodiscard]] double maximum() const { return _maximum; }

private:
    [[nodiscard]] std::optional<double> secondsLasting(double before);

    const Clock& _clock;
    const StringTable& _texts;
    double _value = 0;
    double _maximum = 0;
    std::optional<Date> _downloadStartTime;
    double _previousSecondsLasting = 0;
};

} // namespace quarry
