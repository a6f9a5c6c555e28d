#include "archive/PropertyListFile.h"

#include "platform/DamagedFile.h"
#include "platform/FileLock.h"
#include "platform/Leftovers.h"
#include "platform/SystemLog.h"

#include <QFileInfo>

#include <utility>

namespace quarry {

struct PropertyListFile::Loaded {
    FileStore::ReadResult file;
    std::optional<PlistValue::Dictionary> entries; ///< None when the file is missing, unreadable or makes no sense.
    QString fault;
};

PropertyListFile::PropertyListFile(QString path, QString lockPath, FileStore& files)
    : _path(std::move(path)), _lockPath(std::move(lockPath)), _files(files)
{
}

PropertyListFile::Loaded PropertyListFile::load() const
{
    Loaded loaded{_files.read(_path), std::nullopt, {}};
    loaded.fault = loaded.file.error;
    if (!loaded.fault.isEmpty() || !loaded.file.stamp)
        return loaded;
    QString reason;
    if (const std::optional<PlistValue> value = readPropertyList(loaded.file.bytes, &reason)) {
        loaded.entries = value->dictionary();
        reason = QStringLiteral("it holds no dictionary");
    }
    if (!loaded.entries)
        loaded.fault = QStringLiteral("%1 makes no sense: %2").arg(_path, reason);
    return loaded;
}

PropertyListFile::Content PropertyListFile::read() const
{
    const Loaded loaded = load();
    return {loaded.entries.value_or(PlistValue::Dictionary()), loaded.file.stamp.has_value(), loaded.fault};
}

QString PropertyListFile::change(const std::function<void(PlistValue::Dictionary&)>& apply) const
{
    QString error;
    const std::optional<FileLock> lock = FileLock::acquire(_lockPath, std::chrono::seconds(10), &error);
    if (!lock)
        return error;
    const Loaded loaded = load();
    if (!loaded.file.error.isEmpty())
        return loaded.file.error;
    if (!loaded.fault.isEmpty()) {
        const DamagedCopy copy =
            copyDamagedFileAside(_files, _path, loaded.file.bytes, loaded.file.stamp->modificationDate());
        if (!copy.error.isEmpty())
            return copy.error;
        systemLog(QStringLiteral("%1; it was copied to %2").arg(loaded.fault, copy.path));
    }
    PlistValue::Dictionary entries = loaded.entries.value_or(PlistValue::Dictionary());
    apply(entries);
    if (loaded.entries && *loaded.entries == entries)
        return {};
    const QByteArray bytes = writeXmlPropertyList(entries);
    if (bytes.isEmpty())
        return QStringLiteral("%1 was not changed: it holds a text that cannot be written").arg(_path);
    const QString temporaryPrefix = QStringLiteral(".settings");
    removeLeftovers(QFileInfo(_path).path(), {temporaryPrefix});
    return _files.replace(_path, temporaryPrefix, 0660, bytes).error;
}

} // namespace quarry
