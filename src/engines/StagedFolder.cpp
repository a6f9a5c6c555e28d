#include "engines/StagedFolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <filesystem>

namespace quarry {

namespace {

const QString namePrefix = QStringLiteral(".quarryOffline-");
const QString lockName = QStringLiteral("/.lock");
/// Between making a staging folder and locking it, it looks like a leftover.
constexpr qint64 SecondsUntilLeftover = 60;

std::filesystem::path systemPath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

} // namespace

StagedFolder::StagedFolder(const QString& folder) : _folder(folder)
{
    if (const QString reason = make(); !reason.isEmpty())
        _error = QStringLiteral("cannot write into %1: %2").arg(folder, reason);
}

QString StagedFolder::make()
{
    std::error_code fault;
    std::filesystem::create_directories(systemPath(_folder), fault);
    if (fault)
        return QString::fromStdString(fault.message());
    removeLeftovers();
    _staging.emplace(_folder + u'/' + namePrefix + QStringLiteral("XXXXXX"));
    if (!_staging->isValid())
        return _staging->errorString();
    std::optional<FileLock> lock = FileLock::tryAcquire(path() + lockName);
    if (!lock)
        return QStringLiteral("no file can be made there");
    _lock = std::move(*lock);
    return {};
}

void StagedFolder::removeLeftovers() const
{
    const QDateTime latest = QDateTime::currentDateTimeUtc().addSecs(-SecondsUntilLeftover);
    for (const QFileInfo& entry : QDir(_folder).entryInfoList({namePrefix + u'*'}, QDir::Dirs | QDir::Hidden)) {
        if (entry.isSymLink() || entry.lastModified() > latest || !FileLock::tryAcquire(entry.filePath() + lockName))
            continue;
        QDir(entry.filePath()).removeRecursively();
    }
}

QString StagedFolder::publish(const QString& name) const
{
    std::error_code fault;
    std::filesystem::rename(systemPath(path() + u'/' + name), systemPath(_folder + u'/' + name), fault);
    return fault ? QStringLiteral("cannot write %1/%2: %3").arg(_folder, name, QString::fromStdString(fault.message()))
                 : QString();
}

} // namespace quarry
