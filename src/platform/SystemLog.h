#pragma once

#include <QString>

#include <functional>

namespace quarry {

/// Diagnostic lines for the system log: standard error, prefixed with the program's name. Thread-safe.
void systemLog(const QString& line);

/// A line about something that was deliberately ignored; shown only when QUARRY_DEBUG is set in the environment.
void debugLog(const QString& line);

/// Where systemLog lines go instead (tests); an empty function restores standard error.
void setSystemLogSink(std::function<void(const QString&)> sink);

} // namespace quarry
