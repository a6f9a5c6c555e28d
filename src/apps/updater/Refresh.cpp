#include "apps/updater/Refresh.h"

#include "apps/updater/RefreshJournal.h"
#include "apps/updater/RefreshLog.h"
#include "apps/updater/RefreshTargets.h"
#include "archive/StringTable.h"
#include "database/Preferences.h"
#include "database/Schedule.h"
#include "database/ServiceHealthFile.h"
#include "engines/BlacklistHooks.h"
#include "engines/PageSteps.h"
#include "engines/QueryUpdater.h"
#include "engines/UrlFilter.h"
#include "platform/FileLock.h"
#include "platform/NetworkReach.h"

#include <QFileInfo>

namespace quarry {

namespace {

constexpr std::chrono::milliseconds PauseBetweenStarts(500);

/// Of a refusal so much is read as tells whether it is a challenge.
CurlPageLoader::Limits servicePageLimits()
{
    CurlPageLoader::Limits limits;
    limits.errorBytes = std::size_t(64) << 10;
    return limits;
}

} // namespace

/// What a running refresh works with. The updater ends first: its updates use the others.
struct Refresh::Work {
    StringTable texts = StringTable::ofProgram();
    SearchAddresses addresses;
    RefreshLog log;
    BlacklistStore blacklist;
    PrivateFilters filters;
    std::optional<QueryDatabaseEngine> database;
    std::optional<RefreshJournal> journal;
    std::optional<ResultPageLoaders> pages;
    std::optional<QueryUpdater> updater;

    Work(const SearchServices& services, const HomeFolder& home, const Clock& clock, FileStore& files)
        : addresses(services, [this](const QString& key) { return texts.text(key); }), log(home, clock, files),
          blacklist(home, files)
    {
    }
};

Refresh::Refresh(UpdaterOptions options, RefreshProgress& progress)
    : _options(std::move(options)), _progress(progress), _home(_options.home),
      _clock(static_cast<double>(_options.clockOffset)), _loader(servicePageLimits()),
      _publicLoader({}, [](const QByteArray& ip) { return !isPrivateAddress(ip); })
{
}

void Refresh::stop()
{
    _pauser.stop();
    _loader.stop();
    _publicLoader.stop();
}

int Refresh::run()
{
    const int status = refresh();
    _progress.refreshFinished(status, _health.services());
    return status;
}

int Refresh::refuse(int status, const QString& reason)
{
    _progress.message(reason);
    return status;
}

void Refresh::noteFault(const QString& fault)
{
    if (!fault.isEmpty())
        _progress.message(fault);
}

int Refresh::refresh()
{
    if (const QString error = _home.makeFolders(); !error.isEmpty())
        return refuse(NotSaved, error);
    if (!QFileInfo(_home.supportFolder()).isWritable())
        return refuse(NotSaved, QStringLiteral("the folder %1 cannot be written").arg(_home.supportFolder()));
    const std::optional<FileLock> onlyOne = FileLock::tryAcquire(_home.updaterLockFile());
    if (!onlyOne)
        return refuse(AnotherRuns, QStringLiteral("another refresh runs already"));

    QString fault;
    const Preferences::Settings settings = Preferences(_home, _files).read(&fault);
    noteFault(fault);
    Work work(services(), _home, _clock, _files);
    const ServiceFetcher::Parts fetching = {_loader,
                                            _pauser,
                                            _clock,
                                            _files,
                                            [&work](const QString& key) { return work.texts.text(key); },
                                            _home.cachesFolder(),
                                            settings.resultsPerEngine};
    QueryUpdateParts parts = {work.addresses, fetching, _notifications, {}, settings.numberOfNewLinks, {}, {},
                              &_progress,     &_health};
    parts.steps.filterByUrl = filterByUrl;
    parts.steps.merge = blacklistHooks(work.blacklist, work.filters, work.log);
    parts.findQuery = [&work](const QString& uuid) { return work.database->queryForUUID(uuid); };
    parts.journal = [&work](const BroughtUpdate& brought) { work.journal->add(brought); };
    addPageSteps(parts.steps, work);
    work.updater.emplace(parts);
    work.database.emplace(
        QueryDatabaseEngine::Parts{_home, _clock, _pauser, _files, _notifications, &*work.updater, {}},
        QueryDatabaseEngine::AtEnd::Discard);
    if (const QString error = work.database->lastError(); !error.isEmpty())
        return refuse(NotSaved, QStringLiteral("the database cannot be read: ") + error);
    work.journal.emplace(*work.database, _progress,
                         RefreshJournal::Merging{settings.numberOfNewLinks, parts.steps.merge});
    const int status = _options.queries.isEmpty() ? startAll(work) : startNamed(work);
    return status == AllUpdated ? finish(work) : status;
}

SearchServices Refresh::services()
{
    const SearchServices::Loaded loaded = SearchServices::load(_home.searchServicesFile());
    noteFault(loaded.error);
    return loaded.services;
}

void Refresh::keepHealth(const SearchServices& services)
{
    ServiceHealthFile::Run run{_clock.now(), _pauser.isStopped(), _health.services(), {}};
    for (auto service = run.services.keyBegin(); service != run.services.keyEnd(); ++service)
        run.addresses.insert(*service, services.origin(*service));
    if (const QString error = ServiceHealthFile(_home, _files).add(run); !error.isEmpty())
        _progress.message(QStringLiteral("how the services are doing could not be kept: ") + error);
}

/// The steps that read the pages behind results.
void Refresh::addPageSteps(UpdateSteps& steps, Work& work)
{
    ResultPageLoaders& pages = work.pages.emplace(_loader, _publicLoader, work.addresses.services(), isPrivateHost);
    steps.restrictResults = [this, &pages, hooks = steps.merge](const QueryFields& query, const ResultList& records,
                                                                const QString& text) {
        return restrictResults(query, records, text, pages, _pauser, hooks);
    };
    steps.refreshChecksumOfItems = [this, &pages](const ResultList& records) {
        return refreshChecksumOfItems(records, pages, _pauser);
    };
}

int Refresh::startAll(Work& work)
{
    _progress.refreshStarted(queriesOfFullRefresh(work.database->rootQuery()).size());
    work.database->updateAllQueries();
    return AllUpdated;
}

int Refresh::startNamed(Work& work)
{
    const RefreshTargets targets = RefreshTargets::named(work.database->rootQuery(), _options.queries);
    if (!targets.error.isEmpty())
        return refuse(WrongUse, targets.error);
    qsizetype expected = targets.paused.size();
    for (const QList<QueryCorePtr>& queries : targets.queries)
        expected += queries.size();
    _progress.refreshStarted(expected);
    for (const QueryCorePtr& node : targets.paused)
        _progress.queryPaused({node->UUID(), node->title()});
    for (const QList<QueryCorePtr>& queries : targets.queries) {
        for (const QueryCorePtr& query : queries)
            work.database->updateQuery(query);
        if (!_pauser.pause(PauseBetweenStarts))
            break;
    }
    return AllUpdated;
}

int Refresh::finish(Work& work)
{
    work.updater->waitUntilIdle();
    const bool isSaved = work.journal->finish();
    work.log.waitUntilWritten();
    keepHealth(work.addresses.services());
    const bool isStopped = _pauser.isStopped();
    // Whatever came of it: without a new date the next refresh would be due at once, and the one after it.
    if (_options.queries.isEmpty() && !isStopped)
        noteFault(Schedule(_home, _files).setLastUpdate(_clock.now()));
    if (!isSaved)
        return NotSaved;
    if (isStopped)
        return Stopped;
    return _progress.someNotUpdated() ? SomeNotUpdated : AllUpdated;
}

} // namespace quarry
