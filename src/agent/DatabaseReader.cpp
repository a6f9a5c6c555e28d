#include "agent/DatabaseReader.h"

#include "database/DatabaseFile.h"
#include "platform/SystemLog.h"

#include <new>

namespace quarry {

namespace {

DatabaseNews newsOf(const QueryCorePtr& root)
{
    DatabaseNews news;
    news.unreadResults = hasUnreadResults(root->childs().value_or(QList<QueryCorePtr>()));
    news.queriesWithNewResults = summariesBelow(root);
    news.queriesWithNewResults.removeIf([](const QuerySummary& query) { return query.nbNewItems <= 0; });
    news.queriesWithNewResults.squeeze();
    return news;
}

} // namespace

std::optional<DatabaseNews> DatabaseReader::read()
{
    const std::optional<FileStamp> there = _files.stamp(_path);
    if (there && there == _seen)
        return std::nullopt;
    std::optional<DatabaseNews> news;
    try {
        news = newsIn(_files.read(_path));
    } catch (const std::bad_alloc&) {
        _seen.reset();
        report(QStringLiteral("UnreadableFile"), QStringLiteral("not enough memory"));
    }
    _isFirst = false;
    return news;
}

std::optional<DatabaseNews> DatabaseReader::newsIn(const FileStore::ReadResult& file)
{
    _seen.reset();
    if (!file.error.isEmpty()) {
        report(QStringLiteral("UnreadableFile"), file.error);
        return std::nullopt;
    }
    const DatabaseFile::Loaded loaded = DatabaseFile::decode(file);
    if (loaded.outcome == DatabaseFile::Outcome::Absent)
        return std::nullopt;
    if (loaded.outcome == DatabaseFile::Outcome::Damaged) {
        // Half of what a program writes in place is no damage.
        if (_files.stamp(_path) != file.stamp)
            return std::nullopt;
        report(QStringLiteral("InvalidArchive"), loaded.reason);
    }
    _seen = file.stamp;
    if (!loaded.root)
        return DatabaseNews();
    _reported.clear();
    return newsOf(loaded.root);
}

void DatabaseReader::report(const QString& name, const QString& reason)
{
    if (reason != _reported)
        systemLog(QStringLiteral("Database loading%1: Error on database opening %2: %3")
                      .arg(_isFirst ? QString() : QStringLiteral(" 2"), name, reason));
    _reported = reason;
}

} // namespace quarry
