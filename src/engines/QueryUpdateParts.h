#pragma once

#include "engines/QueryUpdateMerge.h"
#include "engines/RunHealth.h"
#include "engines/ServiceFetcher.h"
#include "engines/UpdateObserver.h"
#include "model/QueryCore.h"
#include "platform/NotificationCenter.h"

#include <functional>
#include <memory>

namespace quarry {

/// What an update brought for its query, to be merged again where the tree it was merged into is no longer in use.
struct BroughtUpdate {
    QString queryUuid;
    SearchDefinition asked;
    ResultList links; ///< In the order of the merge.
    Date date;        ///< Of the merge.
    std::weak_ptr<QueryCore> mergedInto;
};

/// Steps of an update that others do. Empty ones leave everything as it is. Called on the update's own thread.
struct UpdateSteps {
    /// Keeps the records whose page holds the text (words restriction 3). `query` is the query as it is asked.
    std::function<ResultList(const QueryFields& query, const ResultList& records, const QString& text)> restrictResults;
    /// Keeps the records whose address matches the expression. May throw, which ends the update.
    std::function<ResultList(const ResultList& records, const QString& pattern)> filterByUrl;
    /// Gives each record the digest of its page.
    std::function<ResultList(const ResultList& records)> refreshChecksumOfItems;
    MergeHooks merge;
};

/// What updates of queries work with. References must outlive every update.
struct QueryUpdateParts {
    const SearchAddresses& addresses;
    ServiceFetcher::Parts fetching;
    NotificationCenter& notifications;
    /// The node of that UUID in the tree that is in use now; none when it was removed.
    std::function<QueryCorePtr(const QString& uuid)> findQuery;
    /// "pref_numberOfNewLinks"; see MergeSettings.
    qint64 numberOfNewLinks = 0;
    UpdateSteps steps;
    /// Gets what each update brought, after it was merged; may be empty. Called on the update threads.
    std::function<void(const BroughtUpdate& brought)> journal;
    UpdateObserver* observer = nullptr;
    /// Gets what happened with each service, also when the program is asked to stop; may be none.
    RunHealth* health = nullptr;
};

} // namespace quarry
