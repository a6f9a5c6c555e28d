#include "log/LXLogger.h"

#include "platform/SystemLog.h"

#include <QFileInfo>

#include <algorithm>
#include <vector>

namespace quarry {

namespace {

constexpr std::chrono::milliseconds StopWait{500};

QString separator()
{
    return QString(51, QLatin1Char('-'));
}

} // namespace

LXLogger::LXLogger(const HomeFolder& home, const Clock& clock, FileStore& files)
    : _clock(clock), _file(home, files), _stringsToLog{separator()}
{
    if (!QFileInfo::exists(home.preferencesFile()))
        systemLog(QStringLiteral("LXLogger : Main Application preferences dos not exist !"));
    _worker = std::thread([this] { work(); });
}

LXLogger::~LXLogger()
{
    {
        const std::lock_guard lock(_mutex);
        _ends = true;
    }
    _wake.notify_all();
    _worker.join();
}

LXLogger& LXLogger::defaultLogger()
{
    static const SystemClock clock;
    static DiskFileStore files;
    static LXLogger logger(HomeFolder::ofUser(), clock, files);
    return logger;
}

void LXLogger::logString(const QString& text)
{
    if (text.isEmpty())
        return;
    const QString entry = _clock.now().description() + QLatin1String(": ") + text;
    {
        const std::lock_guard lock(_mutex);
        if (_mustStop)
            return;
        _stringsToLog.append(entry);
        for (const QString& line : std::as_const(_stringsToLog))
            _operations.push_back(LogOperation::initWithString(line, _file));
        _stringsToLog.clear();
    }
    _wake.notify_one();
}

void LXLogger::stopLogger()
{
    std::unique_lock lock(_mutex);
    _operations.clear();
    _mustStop = true;
    _finished.wait_for(lock, StopWait, [this] { return isIdle(); });
    _finished.notify_all();
}

qsizetype LXLogger::numberOfStringsToLog() const
{
    const std::lock_guard lock(_mutex);
    return _stringsToLog.isEmpty() ? static_cast<qsizetype>(_operations.size()) + _running : _stringsToLog.size();
}

void LXLogger::logThread(const QStringList& lines)
{
    _file.append(lines);
}

void LXLogger::waitUntilWritten()
{
    std::unique_lock lock(_mutex);
    _finished.wait(lock, [this] { return isIdle(); });
}

void LXLogger::work()
{
    std::unique_lock lock(_mutex);
    for (;;) {
        _wake.wait(lock, [this] { return _ends || !_operations.empty(); });
        if (_operations.empty())
            return;
        constexpr std::size_t MostAtOnce = 100;
        const auto end = _operations.begin() + std::ptrdiff_t(std::min(_operations.size(), MostAtOnce));
        const std::vector<LogOperation> batch(_operations.begin(), end);
        _operations.erase(_operations.begin(), end);
        _running = static_cast<qsizetype>(batch.size());
        lock.unlock();
        batch.front().main(std::span(batch).subspan(1));
        lock.lock();
        _running = 0;
        if (_operations.empty())
            _finished.notify_all();
    }
}

} // namespace quarry
