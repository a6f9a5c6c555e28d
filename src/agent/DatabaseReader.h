#pragma once

#include "database/TreeNews.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"

#include <QList>
#include <QString>

#include <optional>

namespace quarry {

/// What the agent has to know of the database.
struct DatabaseNews {
    bool unreadResults = false;
    QList<QuerySummary> queriesWithNewResults; ///< Those only that have something new.
};

/// Reads the database file for what is new in it, and keeps nothing of its tree. It never writes, beside the file
/// neither. Any thread, but one at a time.
class DatabaseReader final {
public:
    /// `files` must outlive the object.
    DatabaseReader(const HomeFolder& home, const FileStore& files) : _path(home.databaseFile()), _files(files) {}

    /// What is new in the file; of one that makes no sense, nothing. None where what was told before still holds: the
    /// file did not change, or is missing, empty, cannot be read, or is being written over just now. Except for one
    /// that did not change, the next call reads it again.
    [[nodiscard]] std::optional<DatabaseNews> read();

private:
    [[nodiscard]] std::optional<DatabaseNews> newsIn(const FileStore::ReadResult& file);
    void report(const QString& name, const QString& reason);

    QString _path;
    const FileStore& _files;
    std::optional<FileStamp> _seen; ///< The state of the file that was told last.
    bool _isFirst = true;           ///< Nothing was read before.
    QString _reported;              ///< What the log was told last; empty when all went well since.
};

} // namespace quarry
