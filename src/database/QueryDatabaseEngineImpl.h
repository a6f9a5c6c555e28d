#pragma once

#include "database/DatabaseFile.h"
#include "database/QueryDatabaseEngine.h"
#include "platform/FileLock.h"

namespace quarry {

/// Holds the root of the current tree. The nodes' look-up by UUID shares it, so that it may be asked by a node that
/// outlives the engine. Thread-safe.
class RootHolder final {
public:
    [[nodiscard]] QueryCorePtr get() const;
    void set(QueryCorePtr root);

private:
    mutable std::mutex _mutex;
    QueryCorePtr _root;
};

/// The engine's state. The order of locks: fileMutex, then the tree lock, then the small mutexes.
struct QueryDatabaseEngine::Impl {
    explicit Impl(Parts engineParts);

    void setRoot(const QueryCorePtr& node);
    void countQueries();
    void setLastError(const QString& error);

    // With fileMutex held:
    /// Reads the file and makes its tree the current one; an empty tree for a damaged one. The log line gets a name
    /// and a reason, once for each fault.
    void load(QLatin1String logFormat);
    [[nodiscard]] bool isThrottled() const;
    /// Waits for the writer lock for some seconds. `error` gets one line for a person on failure.
    [[nodiscard]] std::optional<FileLock> takeWriterLock(QString& error) const;
    /// Saves under the writer lock, which the caller holds.
    DatabaseFile::Saved saveLocked();
    /// Back to what the file holds, after a change that could not be saved.
    void revert();

    Parts parts;
    AtEnd atEnd = AtEnd::Discard;
    std::shared_ptr<const TreeServices> services;

    /// One load, save or edit at a time. Recursive: an edit's change calls the engine's own operations.
    std::recursive_mutex fileMutex;
    DatabaseFile file;             ///< Guarded by fileMutex, as are the next three.
    DatabaseFile::Loaded reported; ///< What the log was told last about a faulty file; never holds a tree.
    std::optional<Date> lastDBSave;
    bool editing = false;

    std::shared_ptr<RootHolder> root;
    std::atomic<std::size_t> queriesNumber{0};
    std::atomic<qint64> nbUpdating{0};
    std::atomic<bool> savingLock{false};
    std::atomic<bool> updatingLock{false};
    std::atomic<bool> searchingLock{false};
    std::atomic<bool> cacheCreationLock{false};
    std::atomic<bool> mustStopThreads{false};

    std::mutex errorMutex;
    QString lastError;

    NotificationCenter::Registration updateEnded;
};

} // namespace quarry
