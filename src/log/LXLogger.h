#pragma once

#include "log/LogFile.h"
#include "log/LogOperation.h"
#include "log/Logger.h"
#include "platform/Clock.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace quarry {

/// Adds time-stamped lines to "UpdaterLog.log" on a thread of its own, in the order they were handed in. The first
/// line of a process is preceded by a separator. Thread-safe; nobody who logs waits for the disk.
///
/// The destructor writes what is still queued, unless the logger was stopped.
class LXLogger final : public Logger {
public:
    /// Clock and files must outlive the object.
    LXLogger(const HomeFolder& home, const Clock& clock, FileStore& files);
    ~LXLogger() override;
    LXLogger(const LXLogger&) = delete;
    LXLogger& operator=(const LXLogger&) = delete;

    /// The process's own, in the user's home folder; made when first asked for. For programs only.
    [[nodiscard]] static LXLogger& defaultLogger();

    /// Queues an entry. An empty text is no entry, and after stopLogger nothing is.
    void logString(const QString& text) override;
    /// For good: drops what was not begun and gives a running write half a second to end.
    void stopLogger();
    /// The lines that wait for a first entry, or else the entries not written yet.
    [[nodiscard]] qsizetype numberOfStringsToLog() const;
    /// Writes a batch of lines as they are, on the calling thread.
    void logThread(const QStringList& lines);
    /// Returns when every entry handed in so far was written or dropped. A program that ends calls this.
    void waitUntilWritten();

private:
    void work();
    [[nodiscard]] bool isIdle() const { return _operations.empty() && _running == 0; }

    const Clock& _clock;
    LogFile _file;
    mutable std::mutex _mutex;
    std::condition_variable _wake;     ///< There is work, or the end.
    std::condition_variable _finished; ///< The worker ran out of work.
    QStringList _stringsToLog;
    std::deque<LogOperation> _operations;
    qsizetype _running = 0;
    bool _mustStop = false;
    bool _ends = false;
    std::thread _worker;
};

} // namespace quarry
