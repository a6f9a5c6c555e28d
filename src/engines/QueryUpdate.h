#pragma once

#include "engines/Interleave.h"
#include "engines/QueryUpdateParts.h"

namespace quarry {

/// One update of one query: asks the services, merges what they bring into the query's results and says so on the
/// notification centre.
///
/// A plain or advanced query is left alone for 15 minutes after its last update unless its search was edited; a
/// combined one is asked each time. When the program is asked to stop meanwhile, the query stays as it was.
///
/// The node in use is looked up again for the merge: the tree may have been read from the file again while the
/// services were asked.
class QueryUpdate final {
public:
    QueryUpdate(const QueryUpdateParts& parts, QueryCorePtr node);

    /// All of it, on this thread. What a step throws comes through; then nothing is merged, no notification is posted,
    /// and the node stays marked as updating.
    UpdateFacts run();

private:
    [[nodiscard]] bool begin();
    [[nodiscard]] bool isRecent() const;
    void fetchSingle();
    void fetchCombined();
    void fetchMember(const QString& text);
    [[nodiscard]] QString advancedAddress(SearchService service, const QString& text) const;
    [[nodiscard]] ResultList ask(SearchService service, const QString& address);
    void count(const ServiceFacts& facts);
    void restrict(ResultList& records, const QString& text) const;
    [[nodiscard]] ResultList linksToMerge() const;
    [[nodiscard]] UpdateFacts merge();
    void end(UpdateFacts& facts);

    const QueryUpdateParts& _parts;
    const QueryCorePtr _node;
    QueryFields _query;     ///< As it was when the update began.
    QString _protectedText; ///< Its text for the addresses that escape ampersands.
    UpdatedQuery _name;
    ServiceFetcher _fetcher;
    ServiceLists _lists;
    bool _stopped = false;
    int _answered = 0; ///< Requests to services that brought a page.
    int _failed = 0;   ///< Requests to services that brought none.
};

} // namespace quarry
