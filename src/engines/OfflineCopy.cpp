#include "engines/OfflineCopy.h"

#include "platform/SystemLog.h"
#include "text/PageText.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace quarry {

namespace {

/// Files whose text cannot be had; other types than those that restrictions leave out.
bool hasNoText(const QString& extension)
{
    static constexpr std::array<QStringView, 9> Types = {u"pdf", u"xls", u"kmz", u"kml", u"avi",
                                                         u"mp4", u"flv", u"mov", u"doc"};
    return std::any_of(Types.begin(), Types.end(),
                       [&](QStringView type) { return extension.compare(type, Qt::CaseInsensitive) == 0; });
}

/// UUIDs come out of a file that anyone may have written: none may lead out of the folder.
bool isFileName(const QString& name)
{
    return !name.isEmpty() && !name.startsWith(u'.') && !name.contains(u'/') && !name.contains(QChar(u'\0'));
}

void write(FileStore& files, const QString& path, const QString& text)
{
    const FileStore::WriteResult written = files.replace(path, QStringLiteral(".page"), 0660, text.toUtf8());
    if (!written.ok())
        debugLog(QStringLiteral("offline copy: %1").arg(written.error));
}

void copyPage(const ResultRecord& record, const QString& folder, const OfflineCopyParts& parts)
{
    const QString name = record.linkUuid().value_or(QString());
    const std::optional<Url> address = record.url();
    if (!isFileName(name) || !address || address->isEmpty())
        return;
    const QString path = folder + QLatin1Char('/') + name;
    if (hasNoText(address->pathExtension()))
        write(parts.files, path, QString());
    else if (!parts.files.stamp(path))
        write(parts.files, path,
              cleanStringWithContentsOfURL(parts.loaders.loaderFor(record), *address).value_or(QString()));
}

} // namespace

OfflineCopyEnd createCacheAtPath(const QueryCorePtr& query, const QString& path, const OfflineCopyParts& parts)
{
    const NotificationCenter::Registration registration = parts.notifications.addObserver(
        QStringLiteral("appwantsquit"),
        [query](const QString&, const NotificationCenter::Sender&) { query->stopTaskNotificationReceived(); });
    const QString uuid = query->UUID();
    const QString folder = path + QLatin1Char('/') + uuid;
    if (!isFileName(uuid))
        return OfflineCopyEnd::NoFolder;
    if (QFileInfo::exists(folder))
        return OfflineCopyEnd::AlreadyThere;
    if (!QDir().mkpath(folder))
        return OfflineCopyEnd::NoFolder;
    const ResultList records = query->results().value_or(ResultList());
    for (qsizetype i = 0; i < records.size() && !query->mustStopCacheCreation(); ++i) {
        copyPage(records[i], folder, parts);
        if (parts.progress)
            parts.progress(i + 1, records.size());
    }
    // Also when it came with the last page: somebody waits for the reply.
    if (!query->takeMustStopCacheCreation())
        return OfflineCopyEnd::Made;
    if (parts.replyToQuit)
        parts.replyToQuit();
    return OfflineCopyEnd::Stopped;
}

} // namespace quarry
