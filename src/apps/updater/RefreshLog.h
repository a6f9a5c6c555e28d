#pragma once

#include "log/LXLogger.h"

#include <mutex>
#include <optional>

namespace quarry {

/// The product's log during a refresh. Most refreshes have nothing to log: the logger is made for the first line, so
/// that the others neither start its thread nor touch its file. Thread-safe. What is queued when it goes away is
/// written first.
class RefreshLog final : public Logger {
public:
    /// Clock and files must outlive the object.
    RefreshLog(HomeFolder home, const Clock& clock, FileStore& files)
        : _home(std::move(home)), _clock(clock), _files(files)
    {
    }

    void logString(const QString& text) override
    {
        {
            const std::lock_guard lock(_mutex);
            if (!_logger)
                _logger.emplace(_home, _clock, _files);
        }
        _logger->logString(text);
    }
    /// Returns when every line handed in so far is in the file.
    void waitUntilWritten()
    {
        const std::lock_guard lock(_mutex);
        if (_logger)
            _logger->waitUntilWritten();
    }

private:
    const HomeFolder _home;
    const Clock& _clock;
    FileStore& _files;
    std::mutex _mutex;
    std::optional<LXLogger> _logger; ///< Once made it stays, so it is used without the mutex.
};

} // namespace quarry
