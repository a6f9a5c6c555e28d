#pragma once

#include "log/Logger.h"

#include <QStringList>

#include <mutex>

namespace quarry::test {

/// Keeps what is logged. Thread-safe.
class NotedLines final : public Logger {
public:
    void logString(const QString& text) override
    {
        const std::lock_guard lock(_mutex);
        _lines.append(text);
    }
    /// What was logged since the last time.
    QStringList take()
    {
        const std::lock_guard lock(_mutex);
        return std::exchange(_lines, {});
    }

private:
    std::mutex _mutex;
    QStringList _lines;
};

} // namespace quarry::test
