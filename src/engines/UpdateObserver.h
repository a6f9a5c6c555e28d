#pragma once

#include "engines/SearchService.h"
#include "engines/ServiceHealth.h"

#include <QString>

#include <optional>

namespace quarry {

/// Which query a report is about.
struct UpdatedQuery {
    QString uuid;
    QString title;
};

/// What asking one service once brought.
struct ServiceFacts {
    qsizetype results = 0; ///< Records that the service's pages gave.
    int pages = 0;         ///< Pages asked for.
    int cachedPages = 0;   ///< Of these, from the page cache.
    int failedPages = 0;   ///< Of these, could not be had.
    /// Why the first of those could not, or why none of the others can have brought anything: one line for a person;
    /// else empty.
    QString error;
    std::optional<ServiceVerdict> verdict; ///< On these pages; none without any.

    /// Pages were asked for and none could be had.
    [[nodiscard]] bool isFailure() const { return pages > 0 && failedPages == pages; }
};

/// How an update of a query ended.
enum class UpdateEnd {
    Updated,     ///< The services were asked and the results merged.
    Recent,      ///< It was updated a short time ago, so nothing was asked.
    Unreachable, ///< None of the services asked could be read; what is stored went through the merge all the same.
    Removed,     ///< The query is no longer in the tree.
    Stopped,     ///< The program was asked to stop; the query is as it was.
    Failed,      ///< Ended by an exception; the query is as it was.
};

struct UpdateFacts {
    UpdateEnd end = UpdateEnd::Updated;
    qint64 added = 0;
    qint64 excluded = 0;
    qint64 blacklisted = 0;
    QString error; ///< One line for a person when it failed; else empty.
};

/// Is told how updates get on. Called on the update threads, several at once; must not throw.
class UpdateObserver {
public:
    virtual ~UpdateObserver() = default;
    virtual void updateStarted(const UpdatedQuery& query) = 0;
    /// Not answered when the program is asked to stop meanwhile.
    virtual void serviceAsked(const UpdatedQuery& query, SearchService service) = 0;
    virtual void serviceAnswered(const UpdatedQuery& query, SearchService service, const ServiceFacts& facts) = 0;
    /// The last word about an update; before its notifications.
    virtual void updateFinished(const UpdatedQuery& query, const UpdateFacts& facts) = 0;
};

} // namespace quarry
