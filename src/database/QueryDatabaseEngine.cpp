// The database object: its file, its lock, its counters. What it answers about the tree stands in DatabaseTree.cpp,
// the updates in DatabaseUpdates.cpp.

#include "database/QueryDatabaseEngineImpl.h"
#include "model/TreeLock.h"
#include "platform/SystemLog.h"

#include <utility>

namespace quarry {

namespace {

constexpr double SecondsBetweenSaves = 60.0;
constexpr double SecondsOfDay = 86400.0;
constexpr std::chrono::seconds LockPatience(10);
/// How often an edit is applied again when a program that takes no lock keeps rewriting the file.
constexpr int MostAttempts = 3;

std::unique_ptr<QueryDatabaseEngine>& processInstance()
{
    // Not destroyed at exit: a stale tree saved by a program that only reads would erase what others saved.
    static auto* const instance = new std::unique_ptr<QueryDatabaseEngine>; // NOLINT
    return *instance;
}

} // namespace

QueryCorePtr RootHolder::get() const
{
    const std::lock_guard lock(_mutex);
    return _root;
}

void RootHolder::set(QueryCorePtr root)
{
    // The old tree may be large: it goes away after the lock is let go.
    const std::lock_guard lock(_mutex);
    std::swap(_root, root);
}

QueryDatabaseEngine::Impl::Impl(Parts engineParts)
    : parts(std::move(engineParts)), file(parts.home, parts.files), root(std::make_shared<RootHolder>())
{
    auto forNodes = std::make_shared<TreeServices>();
    forNodes->findByUuid = [weak = std::weak_ptr<RootHolder>(root)](const QString& uuid) -> QueryCorePtr {
        const std::shared_ptr<RootHolder> holder = weak.lock();
        const QueryCorePtr top = holder ? holder->get() : nullptr;
        return top ? top->findQueryForUUID(uuid) : nullptr;
    };
    forNodes->cachesFolder = parts.home.cachesFolder();
    services = std::move(forNodes);
}

void QueryDatabaseEngine::Impl::setRoot(const QueryCorePtr& node)
{
    node->setServices(services);
    root->set(node);
    countQueries();
}

void QueryDatabaseEngine::Impl::countQueries()
{
    const QueryCorePtr top = root->get();
    queriesNumber = top ? static_cast<std::size_t>(top->numberOfChilds()) : 0;
}

void QueryDatabaseEngine::Impl::setLastError(const QString& error)
{
    const std::lock_guard lock(errorMutex);
    lastError = error;
}

void QueryDatabaseEngine::Impl::load(QLatin1String logFormat)
{
    const DatabaseFile::Loaded loaded = file.load();
    const bool isKnown = loaded.outcome == reported.outcome && loaded.reason == reported.reason;
    reported = {loaded.outcome, nullptr, loaded.reason};
    setLastError(loaded.reason);
    switch (loaded.outcome) {
    case DatabaseFile::Outcome::Loaded:
        setRoot(loaded.root);
        return;
    case DatabaseFile::Outcome::Absent:
        break;
    case DatabaseFile::Outcome::Unreadable:
        if (!isKnown)
            systemLog(QString(logFormat).arg(QStringLiteral("UnreadableFile"), loaded.reason));
        break;
    case DatabaseFile::Outcome::Damaged:
        if (!isKnown)
            systemLog(QString(logFormat).arg(QStringLiteral("InvalidArchive"), loaded.reason));
        setRoot(QueryCore::initWithQueryFolder(QStringLiteral("")));
        return;
    }
    if (!root->get())
        setRoot(QueryCore::initWithQueryFolder(QStringLiteral("")));
    countQueries();
}

bool QueryDatabaseEngine::Impl::isThrottled()
{
    const std::lock_guard lock(fileMutex);
    if (!lastDBSave)
        return false;
    const double since = parts.clock.now().secondsSince(*lastDBSave);
    // A date far ahead comes from a clock that was wrong: waiting for it could take for ever.
    return since < SecondsBetweenSaves && since >= -SecondsOfDay;
}

DatabaseFile::Saved QueryDatabaseEngine::Impl::saveLocked()
{
    struct Saving {
        std::atomic<bool>& flag;
        ~Saving() { flag = false; }
    };
    savingLock = true;
    const auto write = [this] {
        const Saving done{savingLock}; // However it ends: a flag left set would drop every later save.
        return file.save(root->get());
    };
    DatabaseFile::Saved saved = write();
    setLastError(saved.error);
    if (saved.outcome == DatabaseFile::Saving::Done) {
        lastDBSave = parts.clock.now();
        reported = {};
    }
    return saved;
}

WriterLock QueryDatabaseEngine::Impl::takeWriterLock(QString& error)
{
    WriterLock lock{std::unique_lock(writersOfThisProgram), std::nullopt};
    error = parts.home.makeFolders();
    if (error.isEmpty())
        lock.programs = FileLock::acquire(parts.home.writerLockFile(), LockPatience, &error);
    return lock;
}

void QueryDatabaseEngine::Impl::revert()
{
    file.forget();
    load(QLatin1String("Database loading 2: Error on database opening %1: %2"));
}

QueryDatabaseEngine::QueryDatabaseEngine(Parts parts, AtEnd atEnd) : _impl(std::make_unique<Impl>(std::move(parts)))
{
    _impl->atEnd = atEnd;
    const QString foldersError = _impl->parts.home.makeFolders();
    _impl->load(QLatin1String("Database loading: Error on database opening %1: %2"));
    _impl->lastDBSave = _impl->file.date();
    if (!foldersError.isEmpty())
        _impl->setLastError(foldersError);
    _impl->updateEnded = _impl->parts.notifications.addObserver(
        QStringLiteral("DBInternalUpdate"),
        [this](const QString&, const NotificationCenter::Sender&) { updateNotification(); });
}

QueryDatabaseEngine::~QueryDatabaseEngine()
{
    _impl->updateEnded = {};
    if (_impl->atEnd == AtEnd::Save && !saveDatabase(true))
        systemLog(lastError());
}

QueryDatabaseEngine& QueryDatabaseEngine::defaultDatabase()
{
    return *processInstance();
}

void QueryDatabaseEngine::setDefaultDatabase(std::unique_ptr<QueryDatabaseEngine> engine)
{
    processInstance() = std::move(engine);
}

bool QueryDatabaseEngine::saveDatabase(bool force)
{
    if (_impl->savingLock || _impl->isEditing() || (!force && _impl->isThrottled()))
        return true;
    QString error;
    const WriterLock writerLock = _impl->takeWriterLock(error);
    if (!writerLock.programs) {
        _impl->setLastError(error);
        return false;
    }
    // Another thread may have saved while this one waited.
    const std::lock_guard lock(_impl->fileMutex);
    // The empty tree that stands for a damaged file says nothing that would be worth the file.
    if (_impl->file.isKnownDamage() && _impl->root->get()->numberOfChilds() == 0)
        return true;
    return (!force && _impl->isThrottled()) || _impl->saveLocked().outcome == DatabaseFile::Saving::Done;
}

void QueryDatabaseEngine::dbSynchCheck()
{
    if (_impl->isEditing())
        return;
    const std::lock_guard lock(_impl->fileMutex);
    if (_impl->file.isAsSeen(DatabaseFile::Compare::Date))
        return;
    _impl->nbUpdating = 0;
    if (!_impl->file.isKnownDamage())
        _impl->load(QLatin1String("Database loading 2: Error on database opening %1: %2"));
    _impl->countQueries();
}

QString QueryDatabaseEngine::lastError() const
{
    const std::lock_guard lock(_impl->errorMutex);
    return _impl->lastError;
}

bool QueryDatabaseEngine::isFileDamaged() const
{
    const std::lock_guard lock(_impl->fileMutex);
    return _impl->reported.outcome == DatabaseFile::Outcome::Damaged;
}

QString QueryDatabaseEngine::damagedCopy() const
{
    const std::lock_guard lock(_impl->fileMutex);
    return _impl->file.damagedCopy();
}

QString QueryDatabaseEngine::edit(const Change& change)
{
    if (_impl->isEditing())
        return change(*this);
    QString error;
    const WriterLock writerLock = _impl->takeWriterLock(error);
    if (!writerLock.programs)
        return error;
    const std::lock_guard lock(_impl->fileMutex);
    DatabaseFile::Saved saved;
    // What a removed query has on the disk goes when the file no longer holds the query, and not before.
    TreeLock::Postponed deletions;
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        deletions.drop();
        if (QString reason = applyToCurrentTree(change); !reason.isEmpty())
            return reason;
        saved = _impl->saveLocked();
        if (saved.outcome != DatabaseFile::Saving::ChangedMeanwhile)
            break;
    }
    if (saved.outcome == DatabaseFile::Saving::Done) {
        deletions.run();
    } else {
        _impl->revert();
        _impl->setLastError(saved.error);
    }
    return saved.error;
}

QString QueryDatabaseEngine::applyToCurrentTree(const Change& change)
{
    if (!_impl->file.isAsSeen(DatabaseFile::Compare::State) && !_impl->file.isKnownDamage()) {
        _impl->nbUpdating = 0;
        _impl->load(QLatin1String("Database loading 2: Error on database opening %1: %2"));
        if (_impl->reported.outcome == DatabaseFile::Outcome::Unreadable)
            return _impl->reported.reason;
    }
    struct Editing {
        std::atomic<std::thread::id>& editor;
        ~Editing() { editor = std::thread::id(); }
    };
    _impl->editor = std::this_thread::get_id();
    const Editing reset{_impl->editor};
    try {
        return change(*this);
    } catch (...) {
        _impl->file.forget(); // Done by halves, it is not to be saved: the next look reads the file again.
        throw;
    }
}

} // namespace quarry
