#pragma once

#include "engines/ResultPageLoaders.h"
#include "model/QueryCore.h"
#include "platform/FileStore.h"
#include "platform/NotificationCenter.h"

#include <functional>

namespace quarry {

/// What became of the page behind one result.
struct CopiedPage {
    enum class State {
        Copied,
        WithoutText, ///< A file of a type that has none: an empty file.
        Unreadable,  ///< The page could not be had: an empty file.
        Unnamed,     ///< The result has no address, or none that could be the name of its file.
        NotWritten,  ///< `error` says why, in one line for a person.
    };
    ResultRecord record;
    State state = State::Copied;
    QString error;
};

/// What a copy works with. References must outlive it.
struct OfflineCopyParts {
    ResultPageLoaders& loaders;
    FileStore& files;
    NotificationCenter& notifications;
    /// Tells the program that it may end now; may be empty. Called when "appwantsquit" came during the copy.
    std::function<void()> replyToQuit;
    /// Gets each result after it was dealt with, and how many were by then, of how many; may be empty. On the copying
    /// thread.
    std::function<void(const CopiedPage& page, qsizetype done, qsizetype all)> progress;
};

enum class OfflineCopyEnd {
    Made,         ///< A page that could not be had is there as an empty file.
    AlreadyThere, ///< A copy is never made anew, not even one that was broken off.
    Stopped,      ///< "appwantsquit" was posted meanwhile; what was copied by then stays.
    NoFolder,     ///< The folder cannot be made, or the query's UUID is no name for one.
};

/// Copies the text of the pages behind a query's visible results into a folder named after the query's UUID in the
/// given one: a file a result, named after its link UUID, one line of plain text in UTF-8, empty where there is no
/// text. A file that cannot be written is passed over. Blocks until all pages were loaded; "appwantsquit" ends it after
/// the current one.
[[nodiscard]] OfflineCopyEnd createCacheAtPath(const QueryCorePtr& query, const QString& path,
                                               const OfflineCopyParts& parts);

} // namespace quarry
