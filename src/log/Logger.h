#pragma once

#include <QString>

namespace quarry {

/// Where lines for the product's log go. Implementations may be called from any thread and do not wait for the disk.
class Logger {
public:
    virtual ~Logger() = default;
    virtual void logString(const QString& text) = 0;
};

} // namespace quarry
