#include "agent/AgentLock.h"

#include "platform/SystemLog.h"

#include <QFile>

namespace quarry {

AgentLock::Outcome AgentLock::take(const HomeFolder& home, std::int64_t ownProcessId)
{
    QString fault = home.makeFolders();
    if (fault.isEmpty())
        _lock = FileLock::tryAcquire(home.agentLockFile(), &fault);
    if (!fault.isEmpty()) {
        systemLog(fault);
        return Outcome::Unavailable;
    }
    if (!_lock)
        return Outcome::HeldByAnother;
    // In place: a file put in its stead would not be the one that is locked.
    QFile file(home.agentLockFile());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(QByteArray::number(qint64(ownProcessId))) < 0)
        systemLog(QStringLiteral("cannot write %1: %2").arg(file.fileName(), file.errorString()));
    return Outcome::Taken;
}

std::optional<std::int64_t> AgentLock::holder(const HomeFolder& home)
{
    QFile file(home.agentLockFile());
    if (!file.exists())
        return std::nullopt;
    QString fault;
    if (FileLock::tryAcquire(home.agentLockFile(), &fault) || !fault.isEmpty())
        return std::nullopt;
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toLongLong() : 0;
}

bool AgentLock::waitUntilFree(const HomeFolder& home, std::chrono::milliseconds timeout)
{
    return !QFile::exists(home.agentLockFile()) || FileLock::acquire(home.agentLockFile(), timeout).has_value();
}

} // namespace quarry
