#include "database/DatabaseFile.h"

#include "model/QueryArchive.h"
#include "platform/DamagedFile.h"
#include "platform/Leftovers.h"
#include "platform/SystemLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

namespace quarry {

namespace {

/// How the temporary files of this file, and of no other, begin.
constexpr QLatin1String TemporaryPrefix(".dat");
constexpr unsigned FileMode = 0660;

} // namespace

DatabaseFile::DatabaseFile(HomeFolder home, FileStore& files)
    : _home(std::move(home)), _files(files), _path(_home.databaseFile())
{
}

bool DatabaseFile::isAsSeen(Compare compare) const
{
    const std::optional<FileStamp> there = _files.stamp(_path);
    if (!_seen || !there)
        return false;
    return compare == Compare::Date ? there->modifiedNanoseconds == _seen->modifiedNanoseconds : *there == *_seen;
}

std::optional<Date> DatabaseFile::date() const
{
    return _seen ? std::optional(_seen->modificationDate()) : std::nullopt;
}

bool DatabaseFile::isKnownDamage() const
{
    return _damage && _damage->copyError.isEmpty() && _files.stamp(_path) == _damage->stamp;
}

DatabaseFile::Loaded DatabaseFile::decode(const FileStore::ReadResult& file)
{
    if (!file.stamp || file.bytes.isEmpty())
        return {};
    LoadedTree tree = loadTree(file.bytes);
    if (!tree.root)
        return {Outcome::Damaged, nullptr, tree.reason};
    if (!tree.root->isQueryFolder())
        return {Outcome::Damaged, nullptr, QStringLiteral("its root is no folder")};
    return {Outcome::Loaded, std::move(tree.root), {}};
}

DatabaseFile::Loaded DatabaseFile::load()
{
    _seen.reset();
    const FileStore::ReadResult file = _files.read(_path);
    if (!file.error.isEmpty())
        return {Outcome::Unreadable, nullptr, file.error};
    Loaded loaded = decode(file);
    if (loaded.outcome == Outcome::Damaged)
        keepDamaged(file);
    if (loaded.outcome == Outcome::Loaded) {
        _seen = file.stamp;
        _damage.reset();
    }
    return loaded;
}

void DatabaseFile::keepDamaged(const FileStore::ReadResult& file)
{
    const DamagedCopy copy = copyDamagedFileAside(_files, _path, file.bytes, file.stamp->modificationDate());
    _damage = Damage{*file.stamp, copy.error};
    if (copy.error.isEmpty())
        _damagedCopy = copy.path;
}

DatabaseFile::Saved DatabaseFile::mayReplace() const
{
    const std::optional<FileStamp> there = _files.stamp(_path);
    if (!there || there->size == 0 || there == _seen)
        return {Saving::Done, {}};
    if (!_damage || *there != _damage->stamp)
        return {Saving::ChangedMeanwhile,
                QStringLiteral("%1 was not saved: another program changed it, or it could not be read").arg(_path)};
    if (!_damage->copyError.isEmpty())
        return {Saving::Failed, _damage->copyError};
    return {Saving::Done, {}};
}

DatabaseFile::Saved DatabaseFile::save(const QueryCorePtr& root)
{
    if (Saved refusal = mayReplace(); refusal.outcome != Saving::Done)
        return refusal;
    const FileStore::WriteResult written =
        _files.replace(_path, TemporaryPrefix, FileMode, [&root](ByteSink& sink) { return saveTree(root, sink); });
    if (!written.ok())
        return {Saving::Failed, written.error};
    _seen = written.stamp;
    _damage.reset();
    sweepTemporaries();
    return {Saving::Done, {}};
}

/// Removes what interrupted writes left behind, of other files of the folder as well. Only names directly in the
/// support folder can match.
void DatabaseFile::sweepTemporaries() const
{
    removeLeftovers(_home.supportFolder(), {QStringLiteral(".damagedCopy"), QStringLiteral(".settings"),
                                            QStringLiteral(".blacklist"), QStringLiteral(".log")});
    const QDir folder(_home.supportFolder());
    for (const QFileInfo& entry :
         folder.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)) {
        const QString name = entry.fileName();
        if (name.size() <= TemporaryPrefix.size() || !name.startsWith(TemporaryPrefix))
            continue;
        const bool isFolder = entry.isDir() && !entry.isSymLink();
        const QString path = entry.filePath();
        if (!(isFolder ? QDir(path).removeRecursively() : QFile::remove(path)))
            debugLog(QStringLiteral("cannot remove %1").arg(path));
    }
}

} // namespace quarry
