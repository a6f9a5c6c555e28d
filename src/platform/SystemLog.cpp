#include "platform/SystemLog.h"

#include "platform/ProgramFile.h"

#include <QFileInfo>

#include <cstdio>
#include <memory>
#include <mutex>

namespace quarry {

namespace {

using Sink = std::function<void(const QString&)>;

struct LogState {
    std::mutex mutex;
    std::shared_ptr<const Sink> sink;
};

LogState& logState()
{
    static LogState state;
    return state;
}

std::shared_ptr<const Sink> currentSink()
{
    const std::lock_guard lock(logState().mutex);
    return logState().sink;
}

} // namespace

void systemLog(const QString& line)
{
    if (const auto sink = currentSink()) {
        (*sink)(line);
        return;
    }
    static const QString program = QFileInfo(runningProgramFile()).fileName();
    // One call a line, so that lines of several threads do not mix.
    const QByteArray text = QStringLiteral("%1: %2\n").arg(program, line).toUtf8();
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stderr);
}

void debugLog(const QString& line)
{
    static const bool wanted = qEnvironmentVariableIsSet("QUARRY_DEBUG");
    if (wanted)
        systemLog(line);
}

void setSystemLogSink(std::function<void(const QString&)> sink)
{
    const std::lock_guard lock(logState().mutex);
    logState().sink = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
}

} // namespace quarry
