#include "engines/FolderCopier.h"

#include "engines/StagedFolder.h"
#include "platform/NetworkReach.h"

#include <QFileInfo>

namespace quarry {

void CopyCounts::add(const CopyCounts& other)
{
    copied += other.copied;
    withoutText += other.withoutText;
    unreadable += other.unreadable;
    unnamed += other.unnamed;
}

FolderCopier::FolderCopier(QString folder, Parts parts)
    : _folder(std::move(folder)), _parts(std::move(parts)),
      _publicLoader({}, [](const QByteArray& ip) { return !isPrivateAddress(ip); })
{
}

void FolderCopier::stop()
{
    _isStopped = true;
    _loader.stop();
    _publicLoader.stop();
}

QString FolderCopier::prepare(const HomeFolder& home)
{
    const SearchServices::Loaded loaded = SearchServices::load(home.searchServicesFile());
    _pages.emplace(_loader, _publicLoader, loaded.services, isPrivateHost);
    return loaded.error;
}

void FolderCopier::take(const CopiedPage& page, QueryCopy& copy)
{
    using State = CopiedPage::State;
    copy.counts.copied += page.state == State::Copied;
    copy.counts.withoutText += page.state == State::WithoutText;
    copy.counts.unreadable += page.state == State::Unreadable;
    copy.counts.unnamed += page.state == State::Unnamed;
    if (page.state == State::Unreadable)
        copy.unreadable.append(page.record.urlText().value_or(QString()));
    if (page.state == State::NotWritten)
        copy.error = page.error;
}

QueryCopy FolderCopier::copy(const QueryCorePtr& query)
{
    QueryCopy copy;
    // With a link that leads nowhere in its place, too.
    if (const QFileInfo place(_folder + u'/' + query->UUID()); place.exists() || place.isSymLink()) {
        copy.end = QueryCopy::End::There;
        return copy;
    }
    const StagedFolder staging(_folder);
    copy.error = staging.error();
    copy.hopeless = true;
    if (!copy.error.isEmpty())
        return copy;
    bool mayQuit = false;
    const auto progress = [&](const CopiedPage& page, qsizetype done, qsizetype all) {
        take(page, copy);
        if (!copy.error.isEmpty() || _isStopped)
            query->stopTaskNotificationReceived();
        if (_parts.progress)
            _parts.progress(*query, done, all);
    };
    const OfflineCopyEnd end = createCacheAtPath(
        query, staging.path(), {*_pages, _parts.files, _parts.notifications, [&mayQuit] { mayQuit = true; }, progress});
    if (!copy.error.isEmpty()) {
        copy.error.replace(staging.path(), _folder);
        return copy;
    }
    if (end == OfflineCopyEnd::Stopped && mayQuit) {
        copy.end = QueryCopy::End::Stopped;
        if (_parts.replyToQuit)
            _parts.replyToQuit();
        return copy;
    }
    copy.hopeless = false;
    if (end != OfflineCopyEnd::Made)
        copy.error = QStringLiteral("no folder named after its ID can be made");
    else if (copy.counts.unreadable > 0 && copy.counts.copied == 0)
        copy.error = QStringLiteral("none of its pages could be read");
    else
        copy.error = staging.publish(query->UUID());
    if (copy.error.isEmpty())
        copy.end = QueryCopy::End::Copied;
    return copy;
}

} // namespace quarry
