#pragma once

#include "engines/PageFacts.h"
#include "engines/SearchAddresses.h"
#include "engines/SearchService.h"
#include "model/ResultRecord.h"
#include "platform/Clock.h"
#include "platform/FileStore.h"
#include "platform/PageLoader.h"
#include "platform/Pauser.h"

#include <QList>
#include <QString>

#include <optional>

namespace quarry {

struct FoundLink;

/// The record of a link that a service shows, with the rank it has there.
[[nodiscard]] ResultRecord resultRecord(SearchService service, const FoundLink& link, qint64 rank, Date found);

/// What asking one service brought.
struct FetchOutcome {
    /// In page order; none when the routine refused to run.
    std::optional<ResultList> records;
    QList<PageFacts> pages;
    /// The program was asked to stop before all pages were asked.
    bool stopped = false;
};

/// Fetches the result pages of one query from the services and cuts the results out of them. Pages are kept for six
/// hours in the query's cache folder.
///
/// One object an update; all calls on the update's own thread. Nothing throws: a page that cannot be had is left out.
class ServiceFetcher final {
public:
    /// What it works with; all must outlive the fetcher.
    struct Parts {
        PageLoader& loader;
        Pauser& pauser;
        const Clock& clock;
        FileStore& files;
        TextLookup lookup;
        /// The folder of all page caches; empty: nothing is cached.
        QString cachesFolder;
        /// "pref_umberOfResultPerEngine": pages are asked at offsets 0, 10, 20, ... below it, and below
        /// 10,000.
        qint64 resultsPerEngine = 40;
    };

    /// For the query with that text (blanks shown) and UUID.
    ServiceFetcher(Parts parts, QString query, QString queryUuid);

    // The address is the service's, with "^start_" still in it. They refuse when the query text is empty; Google also
    // when the address is.
    [[nodiscard]] FetchOutcome updateGoogle(const QString& address);
    [[nodiscard]] FetchOutcome updateYahoo(const QString& address);
    [[nodiscard]] FetchOutcome updateBing(const QString& address);
    /// Always refuses: extraction is switched off for this service.
    [[nodiscard]] FetchOutcome updateExalead(const QString& address);
    [[nodiscard]] FetchOutcome updateIxquick(const QString& address);
    /// The one of that service.
    [[nodiscard]] FetchOutcome update(SearchService service, const QString& address);

private:
    Parts _parts;
    QString _query;
    QString _queryUuid;
};

} // namespace quarry
