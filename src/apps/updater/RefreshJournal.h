#pragma once

#include "apps/updater/RefreshProgress.h"
#include "database/QueryDatabaseEngine.h"
#include "database/RefreshCommit.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace quarry {

/// Gets what the updates of a refresh bring into the database file: now and then while it runs, and at its end.
/// Somebody else may have saved meanwhile; then the same links are merged again, into what they saved. Thread-safe.
class RefreshJournal final {
public:
    /// What a second merge goes by; the same as the first.
    struct Merging {
        qint64 numberOfNewLinks = 0;
        MergeHooks hooks;
    };
    /// `every` is the time between saves while the refresh runs. References, and what the hooks use, must outlive it.
    RefreshJournal(QueryDatabaseEngine& database, RefreshProgress& progress, Merging merging,
                   std::chrono::milliseconds every = std::chrono::minutes(1));
    ~RefreshJournal();
    RefreshJournal(const RefreshJournal&) = delete;
    RefreshJournal& operator=(const RefreshJournal&) = delete;

    /// What an update brought; called on its thread.
    void add(const BroughtUpdate& brought) { _commit.add(brought); }
    /// No more saves in between; saves what waits. False when that failed.
    [[nodiscard]] bool finish();

private:
    void saveNowAndThen(std::chrono::milliseconds every);
    bool commit();

    RefreshProgress& _progress;
    RefreshCommit _commit;
    std::mutex _mutex;
    std::condition_variable _finishing;
    bool _isFinishing = false;
    std::thread _saver; ///< Last: it uses the others.
};

} // namespace quarry
