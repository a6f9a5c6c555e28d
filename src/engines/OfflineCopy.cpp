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

CopiedPage copyPage(const ResultRecord& record, const QString& folder, const OfflineCopyParts& parts)
{
    CopiedPage page{record, CopiedPage::State::Unnamed, {}};
    const QString name = record.linkUuid().value_or(QString());
    const std::optional<Url> address = record.url();
    if (!isFileName(name) || !address || address->isEmpty())
        return page;
    const QString path = folder + QLatin1Char('/') + name;
    std::optional<QString> text;
    if (hasNoText(address->pathExtension())) {
        page.state = CopiedPage::State::WithoutText;
    } else {
        page.state = CopiedPage::State::Copied;
        // Two results of one name share their file.
        if (parts.files.stamp(path))
            return page;
        text = cleanStringWithContentsOfURL(parts.loaders.loaderFor(record), *address);
        if (!text)
            page.state = CopiedPage::State::Unreadable;
    }
    const QByteArray bytes = text.value_or(QString()).toUtf8();
    const FileStore::WriteResult written = parts.files.replace(path, QStringLiteral(".page"), 0660, bytes);
    if (!written.ok()) {
        debugLog(QStringLiteral("offline copy: %1").arg(written.error));
        page.state = CopiedPage::State::NotWritten;
        page.error = written.error;
    }
    return page;
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
    // All of them, whatever somebody searches in the list right now.
    const ResultList records = query->snapshot().fields._currentResult.value_or(ResultList());
    for (qsizetype i = 0; i < records.size() && !query->mustStopCacheCreation(); ++i) {
        const CopiedPage page = copyPage(records[i], folder, parts);
        if (parts.progress)
            parts.progress(page, i + 1, records.size());
    }
    // Also when it came with the last page: somebody waits for the reply.
    if (!query->takeMustStopCacheCreation())
        return OfflineCopyEnd::Made;
    if (parts.replyToQuit)
        parts.replyToQuit();
    return OfflineCopyEnd::Stopped;
}

} // namespace quarry
