#include "log/LogFile.h"

#include "platform/FileLock.h"
#include "platform/SystemLog.h"

#include <QFile>
#include <QFileInfo>

namespace quarry {

namespace {

constexpr std::chrono::seconds LongestWait{5};

QByteArray joined(const QStringList& lines)
{
    QByteArray bytes;
    for (const QString& line : lines)
        bytes += line.toUtf8() + '\n';
    return bytes;
}

/// One write to the end as it is by then, so that lines of a process that could not wait for its turn stay whole.
bool appendBytes(const QString& path, const QByteArray& bytes)
{
    // Opening a pipe would wait for its reader.
    if (const QFileInfo there(path); there.exists() && !there.isFile())
        return false;
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered) &&
           file.write(bytes) == bytes.size();
}

/// The text after the newline that has `count` newlines behind it.
qsizetype beginOfLastPieces(const QByteArray& bytes, qsizetype count)
{
    qsizetype at = bytes.size();
    for (; count >= 0 && at > 0; --count)
        at = bytes.lastIndexOf('\n', at - 1);
    return at + 1;
}

} // namespace

LogFile::LogFile(HomeFolder home, FileStore& files) : _home(std::move(home)), _path(_home.logFile()), _files(files) {}

void LogFile::append(const QStringList& lines)
{
    if (lines.isEmpty())
        return;
    const std::lock_guard guard(_mutex);
    QString error = _home.makeFolders();
    if (!error.isEmpty())
        debugLog(error);
    const auto lock = FileLock::acquire(_home.logLockFile(), LongestWait, &error);
    if (!lock)
        debugLog(error);
    const std::optional<qsizetype> before = newlinesNow();
    const QByteArray bytes = joined(lines);
    const bool written = appendBytes(_path, bytes);
    const std::optional<FileStamp> stamp = _files.stamp(_path);
    _known.reset();
    if (!written || !before || !stamp || !lock) {
        debugLog(QStringLiteral("%1 could not be written or counted").arg(_path));
        return;
    }
    _known = Known{*stamp, *before + bytes.count('\n')};
    if (_known->newlines >= MostPieces)
        trim();
}

std::optional<qsizetype> LogFile::newlinesNow() const
{
    const std::optional<FileStamp> stamp = _files.stamp(_path);
    if (!stamp || stamp->size == 0)
        return 0;
    if (_known && _known->stamp == *stamp)
        return _known->newlines;
    const FileStore::ReadResult file = _files.read(_path);
    return file.error.isEmpty() ? std::optional(file.bytes.count('\n')) : std::nullopt;
}

void LogFile::trim()
{
    const FileStore::ReadResult file = _files.read(_path);
    _known.reset();
    if (!file.error.isEmpty() || file.bytes.isEmpty())
        return;
    const QByteArray kept = file.bytes.mid(beginOfLastPieces(file.bytes, MostPieces - 1));
    const FileStore::WriteResult written = _files.replace(_path, QStringLiteral(".log"), 0660, kept);
    if (written.ok())
        _known = Known{written.stamp, kept.count('\n')};
}

} // namespace quarry
