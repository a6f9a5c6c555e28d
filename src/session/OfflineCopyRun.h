#pragma once

#include "engines/FolderCopier.h"
#include "platform/EventTimers.h"
#include "platform/Worker.h"

#include <QList>
#include <QString>

#include <functional>
#include <memory>

namespace quarry {

/// How far an offline copy is, and how it ended.
struct OfflineCopyState {
    bool isRunning = false;
    bool isStopping = false;
    QString folder;
    QString title; ///< The query that is being copied.
    qsizetype queries = 0;
    qsizetype queriesDone = 0;
    qsizetype results = 0; ///< Of that query.
    qsizetype resultsDone = 0;

    qsizetype copied = 0; ///< Queries.
    qsizetype there = 0;  ///< Queries with a copy that was there already and stays as it is.
    qsizetype failed = 0;
    bool isStopped = false;
    CopyCounts counts;
    QString error; ///< Of the first that failed, in one line for a person.
};

/// Copies the pages behind queries' results into a folder on a thread of its own, for a window. Main thread only.
/// Destroying it breaks off what runs; of an unfinished copy nothing is kept.
class OfflineCopyRun final {
public:
    struct Parts {
        HomeFolder home;
        FileStore& files;
        NotificationCenter& notifications;
        EventTimers& timers; ///< Of the main thread.
    };

    /// References must outlive the object. `changed` is called on the main thread after each change of the state.
    OfflineCopyRun(Parts parts, std::function<void()> changed);
    ~OfflineCopyRun();
    OfflineCopyRun(const OfflineCopyRun&) = delete;
    OfflineCopyRun& operator=(const OfflineCopyRun&) = delete;

    /// One query after the other. Does nothing while one runs.
    void start(const QList<QueryCorePtr>& queries, const QString& folder);
    /// Breaks off the page that is being loaded.
    void stop();
    /// The program wants to end: tells the copy, which replies when it has stopped. At once when none runs.
    void stopToQuit(std::function<void()> reply);
    [[nodiscard]] const OfflineCopyState& state() const { return _state; }

private:
    void copyAll(const QList<QueryCorePtr>& queries, FolderCopier& copier);
    void begin(const QString& title);
    void take(const QueryCopy& copy);
    void onMain(const std::function<void(OfflineCopyRun& run)>& call);
    void finish();

    Parts _parts;
    std::function<void()> _changed;
    std::function<void()> _reply;
    OfflineCopyState _state;
    std::shared_ptr<FolderCopier> _copier;
    std::shared_ptr<OfflineCopyRun*> _alive; ///< What is posted finds out whether this object is still there.
    Worker _worker;                          ///< Last: it ends before what its jobs use goes away.
};

} // namespace quarry
