#pragma once

#include "engines/OfflineCopy.h"
#include "platform/CurlPageLoader.h"
#include "platform/HomeFolder.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <optional>

namespace quarry {

/// What copies came to, in pages.
struct CopyCounts {
    qint64 copied = 0;
    qint64 withoutText = 0;
    qint64 unreadable = 0;
    qint64 unnamed = 0; ///< Results without a name for their file; a refresh gives them one.

    void add(const CopyCounts& other);
};

/// How the copy of one query ended.
struct QueryCopy {
    enum class End { Copied, There, Stopped, Failed };
    End end = End::Failed;
    CopyCounts counts;
    QStringList unreadable; ///< Addresses.
    QString error;          ///< One line for a person when it failed.
    bool hopeless = false;  ///< It failed for a reason that the next query will meet as well.
};

/// Copies the pages behind queries' results into a folder, each query's into one of its own that is there as a whole or
/// not at all. One thread at a time, but for stop().
class FolderCopier final {
public:
    /// Gets how many of a query's results were dealt with; on the copying thread.
    using Progress = std::function<void(const QueryCore& query, qsizetype done, qsizetype all)>;
    struct Parts {
        FileStore& files;
        /// Where "appwantsquit" ends a copy after the current page.
        NotificationCenter& notifications;
        Progress progress; ///< May be empty.
        /// Tells the program that it may end now; may be empty. Called when "appwantsquit" ended a copy.
        std::function<void()> replyToQuit = {};
    };

    /// References must outlive it.
    FolderCopier(QString folder, Parts parts);

    /// Reads where the services are: before the first copy. Answers what is wrong with that; empty when nothing is.
    [[nodiscard]] QString prepare(const HomeFolder& home);
    /// Blocks until all pages were loaded.
    [[nodiscard]] QueryCopy copy(const QueryCorePtr& query);
    /// Breaks off the page that is being loaded, and every later copy. Any thread.
    void stop();

private:
    void take(const CopiedPage& page, QueryCopy& copy);

    const QString _folder;
    const Parts _parts;
    std::atomic<bool> _isStopped = false;
    CurlPageLoader _loader;
    CurlPageLoader _publicLoader; ///< Keeps away from private addresses.
    std::optional<ResultPageLoaders> _pages;
};

} // namespace quarry
