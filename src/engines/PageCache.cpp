#include "engines/PageCache.h"

#include "archive/SmallArchive.h"
#include "platform/SystemLog.h"
#include "text/Data.h"
#include "text/Uuid.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace quarry {

namespace {

constexpr double LifetimeSeconds = 21600.0;
constexpr double CredibleFutureSeconds = 86400.0;
/// More than the largest page that is ever loaded can take.
constexpr qint64 MaximumFileSize = 64 << 20;
constexpr unsigned FileMode = 0660;

const QString& dateKey()
{
    static const QString key = QStringLiteral("cacheDateKey");
    return key;
}

const QString& namesKey()
{
    static const QString key = QStringLiteral("cacheKey");
    return key;
}

const QString& encodingKey()
{
    static const QString key = QStringLiteral("webEncodingKey");
    return key;
}

const QString& sourceKey()
{
    static const QString key = QStringLiteral("webSouceKey");
    return key;
}

QString temporaryPrefix()
{
    return QStringLiteral(".Cache-");
}

/// A name such as a UUID: nothing that could lead to another folder.
bool isPlainName(const QString& name)
{
    const auto isPlain = [](QChar c) { return c.unicode() < 128 && (c.isLetterOrNumber() || c == u'-' || c == u'_'); };
    return !name.isEmpty() && name.size() <= 64 && std::all_of(name.begin(), name.end(), isPlain);
}

bool isCacheFile(const QFileInfo& file)
{
    const QString extension = file.suffix().toLower();
    return extension == u"qsidx" || extension == u"qspagecache" || file.fileName().startsWith(temporaryPrefix());
}

QByteArray smallFile(const QString& path)
{
    // Opening a pipe would wait for its writer.
    QFile file(path);
    const bool isReadable = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly);
    // Qt makes room for as much as it is asked for.
    const qint64 size = isReadable ? file.size() : 0;
    return size <= MaximumFileSize ? file.read(size) : QByteArray();
}

/// A page's file is made in place: one that is cut short is no page, and is fetched again.
bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered) &&
                         file.write(bytes) == bytes.size();
    if (!written && file.isOpen())
        file.remove();
    return written;
}

bool isStale(Date started, Date now)
{
    const double age = now.secondsSince(started);
    return !(age <= LifetimeSeconds && age >= -CredibleFutureSeconds);
}

} // namespace

PageCache::PageCache(FileStore& files, const QString& cachesFolder, const QString& queryUuid, Date now) : _files(files)
{
    if (cachesFolder.isEmpty() || !isPlainName(queryUuid))
        return;
    const QString folder = cachesFolder + QLatin1Char('/') + queryUuid;
    if (!QDir().mkpath(folder) || QFileInfo(folder).isSymLink()) {
        debugLog(QStringLiteral("No page cache in %1").arg(folder));
        return;
    }
    _folder = folder;
    readIndex(now);
}

void PageCache::readIndex(Date now)
{
    const QString path = _folder + QLatin1String("/Cache.qsidx");
    if (!QFileInfo::exists(path))
        return;
    const PlistValue index = unarchivedValue(smallFile(path)).value_or(PlistValue());
    _started = Date(index[dateKey()].real().value_or(0.0));
    if (isStale(*_started, now)) {
        removeFiles();
        _started.reset();
        return;
    }
    const auto names = index[namesKey()].dictionary().value_or(PlistValue::Dictionary());
    for (auto entry = names.begin(); entry != names.end(); ++entry) {
        const QString name = entry.value().text().value_or(QString());
        if (isPlainName(name))
            _names.insert(entry.key(), name);
    }
}

void PageCache::removeFiles() const
{
    const QFileInfoList files = QDir(_folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo& file : files) {
        if (isCacheFile(file) && !QFile::remove(file.filePath()))
            debugLog(QStringLiteral("%1 was not deleted").arg(file.filePath()));
    }
}

QString PageCache::pageFile(const QString& name) const
{
    return _folder + QLatin1Char('/') + name + QLatin1String(".qspagecache");
}

std::optional<DecodedPage> PageCache::page(const QString& address) const
{
    const QString name = _names.value(address);
    if (name.isEmpty())
        return std::nullopt;
    const auto archive = decompressedData(smallFile(pageFile(name)));
    const auto entries = archive && !archive->isEmpty() ? unarchivedValue(*archive) : std::nullopt;
    const auto text = entries ? (*entries)[sourceKey()].text() : std::nullopt;
    const auto encoding = entries ? (*entries)[encodingKey()].integer() : std::nullopt;
    if (!text || !encoding || *encoding < 0 || *encoding > std::numeric_limits<EncodingNumber>::max())
        return std::nullopt;
    return DecodedPage{*text, static_cast<EncodingNumber>(*encoding)};
}

void PageCache::store(const QString& address, const DecodedPage& page)
{
    if (_folder.isEmpty())
        return;
    const QByteArray archive =
        archivedData(PlistValue::Dictionary{{encodingKey(), qint64(page.encoding)}, {sourceKey(), page.text}});
    const auto bytes = compressedData(archive);
    const QString name = UUIDString();
    if (!bytes || !writeFile(pageFile(name), *bytes)) {
        debugLog(QStringLiteral("A page was not kept in %1").arg(_folder));
        return;
    }
    _names.insert(address, name);
    _changed = true;
}

void PageCache::close(Date now)
{
    if (!_changed)
        return;
    PlistValue::Dictionary names;
    for (auto entry = _names.begin(); entry != _names.end(); ++entry)
        names.insert(entry.key(), entry.value());
    const PlistValue::Dictionary index{{dateKey(), _started.value_or(now).secondsSinceReference()},
                                       {namesKey(), names}};
    const auto written =
        _files.replace(_folder + QLatin1String("/Cache.qsidx"), temporaryPrefix(), FileMode, archivedData(index));
    if (!written.ok())
        debugLog(QStringLiteral("The page cache's index was not written: ") + written.error);
    _changed = false;
}

} // namespace quarry
