#include "blacklist/BlacklistStore.h"

#include "platform/DamagedFile.h"
#include "platform/FileLock.h"
#include "platform/SystemLog.h"

namespace quarry {

BlacklistStore::BlacklistStore(HomeFolder home, FileStore& files) : _home(std::move(home)), _files(files) {}

std::shared_ptr<const BlacklistStore::Snapshot> BlacklistStore::current()
{
    const QString path = _home.blacklistFile();
    const std::lock_guard lock(_mutex);
    const std::optional<FileStamp> stamp = _files.stamp(path);
    if (_snapshot && stamp == _stamp)
        return _snapshot;
    const FileStore::ReadResult file = _files.read(path);
    if (!file.error.isEmpty()) {
        // It may be readable the next time without having changed, so nothing is remembered but that it was told.
        report(file.error);
        return std::make_shared<const Snapshot>(QList<BlacklistRule>());
    }
    QString reason;
    std::optional<StoredBlacklist> list;
    if (!file.bytes.isEmpty())
        list = unarchivedBlacklist(file.bytes, &reason);
    report(reason.isEmpty() ? QString() : QStringLiteral("%1 cannot be understood: %2").arg(path, reason));
    const BlacklistManager manager(std::move(list).value_or(StoredBlacklist()));
    _snapshot = std::make_shared<const Snapshot>(manager.rules());
    _stamp = file.stamp;
    return _snapshot;
}

void BlacklistStore::report(const QString& fault)
{
    if (fault == _reported)
        return;
    _reported = fault;
    if (!fault.isEmpty())
        systemLog(fault);
}

bool BlacklistStore::isAddressFiltered(const QString& address, Logger& log)
{
    return current()->matcher.isAddressFiltered(address, log);
}

std::optional<BlacklistManager> BlacklistStore::listToChange(QString& error)
{
    const QString path = _home.blacklistFile();
    const FileStore::ReadResult file = _files.read(path);
    error = file.error;
    if (!error.isEmpty())
        return std::nullopt;
    if (file.bytes.isEmpty())
        return BlacklistManager();
    QString reason;
    if (std::optional<StoredBlacklist> list = unarchivedBlacklist(file.bytes, &reason))
        return BlacklistManager(*std::move(list));
    const DamagedCopy copy = copyDamagedFileAside(_files, path, file.bytes, file.stamp->modificationDate());
    error = copy.error;
    if (!error.isEmpty())
        return std::nullopt;
    systemLog(QStringLiteral("%1 cannot be understood: %2; it was copied to %3").arg(path, reason, copy.path));
    return BlacklistManager();
}

QString BlacklistStore::change(const std::function<bool(BlacklistManager&)>& apply, std::chrono::milliseconds patience)
{
    QString error = _home.makeFolders();
    if (!error.isEmpty())
        return error;
    const auto lock = FileLock::acquire(_home.writerLockFile(), patience, &error);
    if (!lock)
        return error;
    std::optional<BlacklistManager> manager = listToChange(error);
    if (!manager || !apply(*manager))
        return error;
    return manager->writeListAtPath(_files, _home.blacklistFile(), &error) ? QString() : error;
}

} // namespace quarry
