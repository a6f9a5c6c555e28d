#pragma once

#include "database/DatabaseFile.h"
#include "database/QueryDatabaseEngine.h"
#include "platform/FileLock.h"

#include <thread>

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

/// What a writer holds: its turn among the threads of this program, and the lock among the programs.
struct WriterLock {
    std::unique_lock<std::mutex> threads;
    std::optional<FileLock> programs; ///< None: it could not be had.
};

/// The engine's state. The order of locks: the writer lock, fileMutex, the tree lock, the small mutexes.
struct QueryDatabaseEngine::Impl {
    explicit Impl(Parts engineParts);

    void setRoot(const QueryCorePtr& node);
    void countQueries();
    void setLastError(const QString& error);

    /// Waits for the writer lock for some seconds; readers go on meanwhile. `error` gets one line for a person on
    /// failure.
    [[nodiscard]] WriterLock takeWriterLock(QString& error);
    /// Whether the calling thread is within an edit.
    [[nodiscard]] bool isEditing() const { return editor.load() == std::this_thread::get_id(); }

    [[nodiscard]] bool isThrottled();

    // With fileMutex held:
    /// Reads the file and makes its tree the current one; an empty tree for a damaged one. The log line gets a name
    /// and a reason, once for each fault.
    void load(QLatin1String logFormat);
    /// Saves; the caller holds the writer lock, too.
    DatabaseFile::Saved saveLocked();
    /// Back to what the file holds, after a change that could not be saved.
    void revert();

    Parts parts;
    AtEnd atEnd = AtEnd::Discard;
    std::shared_ptr<const TreeServices> services;

    /// One load, save or edit at a time. Recursive: an edit's change calls the engine's own operations.
    std::recursive_mutex fileMutex;
    DatabaseFile file;             ///< Guarded by fileMutex, as are the next two.
    DatabaseFile::Loaded reported; ///< What the log was told last about a faulty file; never holds a tree.
    std::optional<Date> lastDBSave;
    std::atomic<std::thread::id> editor{}; ///< The thread within an edit.
    std::mutex writersOfThisProgram;

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
