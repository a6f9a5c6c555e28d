#include "engines/ResultMerge.h"

#include "engines/KnownLinks.h"
#include "model/RecordData.h"
#include "model/ResultComparator.h"
#include "text/Uuid.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace quarry {

namespace {

constexpr double ExpiryDays = 90.0;

/// Files that are no pages to read. A PDF is none of them: it may be a result.
constexpr std::array<QLatin1String, 13> UnwantedTypes = {
    QLatin1String("xls"), QLatin1String("kmz"),  QLatin1String("kml"), QLatin1String("avi"), QLatin1String("mp4"),
    QLatin1String("flv"), QLatin1String("mov"),  QLatin1String("xml"), QLatin1String("gz"),  QLatin1String("zip"),
    QLatin1String("sit"), QLatin1String("sitx"), QLatin1String("doc")};

/// One merge at work.
class Merge final {
public:
    Merge(const QueryFields& query, const MergeSettings& settings, const MergeHooks& hooks)
        : _query(query), _settings(settings), _hooks(hooks)
    {
        _outcome.results = query._currentResult.value_or(ResultList());
    }

    void expire();
    void take(const ResultList& links);
    [[nodiscard]] MergeOutcome finished();

private:
    [[nodiscard]] bool isExpired(const ResultRecord& record) const;
    [[nodiscard]] bool isFull() const;
    void takeOne(const ResultRecord& link, const LinkAddress& address);
    [[nodiscard]] bool isFiltered(const ResultRecord& link) const;
    void noteChangedPage(const ResultRecord& link);
    [[nodiscard]] bool isExcludedItem(const ResultRecord& record, const LinkAddress& address);

    const QueryFields& _query;
    const MergeSettings& _settings;
    const MergeHooks& _hooks;
    MergeOutcome _outcome;
    KnownLinks _hidden;
    KnownLinks _known;
    /// Where the results stand that were there before; filled only when digests are compared.
    QHash<QString, qsizetype> _storedByAddress;
};

bool Merge::isExpired(const ResultRecord& record) const
{
    const std::optional<Date> found = record.dateOfFind();
    return record.rating().value_or(0) == 0 && found && _settings.now.secondsSince(*found) / 3600.0 / 24.0 > ExpiryDays;
}

void Merge::expire()
{
    ResultList& results = _outcome.results;
    results.removeIf([this](const ResultRecord& record) { return isExpired(record); });
    // Most records need no change, and a changed one costs a block of memory.
    for (qsizetype i = 0; i < results.size(); ++i) {
        const ResultRecord& record = std::as_const(results)[i];
        const bool wasNew = record.newSincePrevious() != false;
        const bool unnamed = !record.data().has(RecordKey::LinkUuid);
        const bool unmarked = !record.visible();
        if (!wasNew && !unnamed && !unmarked)
            continue;
        ResultRecord kept = record.withNewSincePrevious(false);
        if (unnamed)
            kept = std::move(kept).withLinkUuid(UUIDString());
        if (unmarked)
            kept = std::move(kept).withVisible(true);
        results[i] = kept;
    }
}

bool Merge::isFull() const
{
    return _settings.numberOfNewLinks > 0 && _outcome.added >= _settings.numberOfNewLinks;
}

void Merge::take(const ResultList& links)
{
    if (links.isEmpty())
        return;
    _hidden = KnownLinks(_query._hiddenResults.value_or(ResultList()));
    _known = KnownLinks(_outcome.results);
    if (_query._computeCheckSumOfLinks) {
        for (qsizetype i = _outcome.results.size(); i-- > 0;)
            _storedByAddress.insert(_outcome.results[i].urlText().value_or(QString()), i);
    }
    for (const ResultRecord& link : links) {
        if (isFull())
            return;
        if (const LinkAddress address(link); address.exists())
            takeOne(link, address);
    }
}

void Merge::takeOne(const ResultRecord& link, const LinkAddress& address)
{
    if (address.hasExtensionAmong(UnwantedTypes) || isFiltered(link) || _hidden.contains(address))
        return;
    if (_known.contains(address)) {
        noteChangedPage(link);
        return;
    }
    const ResultRecord record = link.withNewSincePrevious(true)
                                    .withRating(0)
                                    .withVisible(true)
                                    .withParentQueryUuid(_query._uuid)
                                    .withLinkUuid(UUIDString());
    if (isExcludedItem(record, address))
        return;
    _outcome.results.append(record);
    _known.add(address);
    ++_outcome.added;
}

bool Merge::isFiltered(const ResultRecord& link) const
{
    if (!_query._urlFilters || _query._urlFilters->isEmpty() || !_hooks.testString)
        return false;
    const QString address = link.urlText().value_or(QString());
    return std::any_of(_query._urlFilters->begin(), _query._urlFilters->end(),
                       [&](const FilterObject& filter) { return _hooks.testString(filter, address); });
}

/// A page whose digest changed since it was found reads as unread again.
void Merge::noteChangedPage(const ResultRecord& link)
{
    if (_storedByAddress.isEmpty())
        return;
    const auto stored = _storedByAddress.constFind(link.urlText().value_or(QString()));
    if (stored == _storedByAddress.constEnd())
        return;
    const ResultRecord& record = std::as_const(_outcome.results)[*stored];
    const QString digest = link.checksum().value_or(QString());
    if (digest.isEmpty() || digest == record.checksum().value_or(QString()) || record.visible() == false)
        return;
    _outcome.results[*stored] = record.withChecksum(digest).withUserSaw(false);
}

bool Merge::isExcludedItem(const ResultRecord& record, const LinkAddress& address)
{
    if (_query._excludedDomains && !_query._excludedDomains->isEmpty()) {
        const QString host = address.host();
        if (!host.isEmpty() && _query._excludedDomains->contains(host)) {
            ++_outcome.excluded;
            return true;
        }
    }
    if (_query._isSuscribedToBlacklist && _hooks.isBlackListed && _hooks.isBlackListed(record)) {
        ++_outcome.blacklisted;
        return true;
    }
    return false;
}

MergeOutcome Merge::finished()
{
    sortResults(_outcome.results, _settings.sortType);
    return std::move(_outcome);
}

} // namespace

MergeOutcome compareWithKnownLinks(const QueryFields& query, const ResultList& links, bool expirePreviousResults,
                                   const MergeSettings& settings, const MergeHooks& hooks)
{
    Merge merge(query, settings, hooks);
    if (expirePreviousResults)
        merge.expire();
    merge.take(links);
    return merge.finished();
}

bool expiresPreviousResults(const QueryFields& query)
{
    return query._currentResult && !query._currentResult->isEmpty();
}

} // namespace quarry
