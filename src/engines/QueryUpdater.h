#pragma once

#include "engines/QueryUpdateParts.h"
#include "engines/UpdateStarter.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <list>
#include <mutex>
#include <thread>

namespace quarry {

/// Starts updates of queries on threads of their own, so many at a time; the others wait their turn in the order in
/// which they were started. It counts what runs and waits: whoever made it knows when the last update has ended,
/// whatever anybody else counts.
///
/// An exception ends the update it comes from and nothing else: that one posts no notifications, but its end is
/// reported and counted. Once the program was asked to stop, what still waits ends without asking anybody.
class QueryUpdater final : public UpdateStarter {
public:
    static constexpr std::size_t MostRunning = 20;

    explicit QueryUpdater(QueryUpdateParts parts, std::size_t mostRunning = MostRunning);
    /// Waits for the last update.
    ~QueryUpdater() override;
    QueryUpdater(const QueryUpdater&) = delete;
    QueryUpdater& operator=(const QueryUpdater&) = delete;

    void update(const QueryCorePtr& node) override;
    void updateAll(const QueryCorePtr& node) override;

    /// Waits until no update runs or waits. Never called on an update thread.
    void waitUntilIdle();

private:
    using Threads = std::list<std::thread>;

    void start(const QueryCorePtr& node);
    [[nodiscard]] QString startThread();
    void work(Threads::iterator self);
    void runOne(const QueryCorePtr& node) noexcept;
    void reportFailure(const QueryCorePtr& node, const QString& error);

    const QueryUpdateParts _parts;
    const std::size_t _mostRunning;
    std::mutex _mutex;
    std::condition_variable _ended;
    std::deque<QueryCorePtr> _waiting;
    Threads _running;
    Threads _finished; ///< Left their work and only need to be joined.
};

} // namespace quarry
