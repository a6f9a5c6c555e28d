#include "updater/DownloadProgress.h"

#include "text/LocalisedFormat.h"

#include <algorithm>
#include <cmath>

namespace quarry {

namespace {

constexpr double bytesOfMegabyte = 1000000;
constexpr double silentSeconds = 3;
constexpr double noEstimate = 99999;

} // namespace

DownloadProgress::DownloadProgress(const Clock& clock, const StringTable& texts) : _clock(clock), _texts(texts) {}

void DownloadProgress::set(double minValue, double maxValue, double currentValue)
{
    _maximum = maxValue;
    _value = currentValue;
    if (minValue == 0)
        _downloadStartTime.reset();
}

void DownloadProgress::setDownloadStartTime()
{
    _previousSecondsLasting = noEstimate;
    _downloadStartTime = _clock.now();
}

std::optional<double> DownloadProgress::secondsLasting(double before)
{
    const double elapsed = _downloadStartTime ? _clock.now().secondsSince(*_downloadStartTime) : 0;
    if (elapsed <= silentSeconds || _maximum <= 0)
        return std::nullopt;
    const double percent = before == 0 ? 0.1 : before / _maximum * 100;
    const double remaining = std::floor(elapsed * (100 - percent) / percent);
    _previousSecondsLasting = std::min(_previousSecondsLasting, remaining + 1);
    return _previousSecondsLasting;
}

QString DownloadProgress::increment(double bytes)
{
    const double before = _value;
    _value += bytes;
    std::vector<FormatArgument> numbers{before / bytesOfMegabyte, std::max(_maximum, 0.0) / bytesOfMegabyte};
    const std::optional<double> seconds = secondsLasting(before);
    if (!seconds)
        return filledFormat(_texts.text(QStringLiteral("Updater_1.0_Download Progress format")), numbers);
    numbers.emplace_back(*seconds);
    return filledFormat(_texts.text(QStringLiteral("Updater_1.0_Download Progress format with time")), numbers);
}

} // namespace quarry
