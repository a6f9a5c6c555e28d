#pragma once

#include "engines/ServiceHealth.h"
#include "platform/HomeFolder.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class QProcess;

namespace quarry {

/// How far a refresh is, and how the last one ended.
struct RefreshState {
    /// What the updater says at its end (docs/updater-protocol.md), as numbers.
    enum class End { None, AllUpdated, SomeNotUpdated, Stopped, AnotherRuns, NotSaved, Failed };

    bool isRunning = false;
    bool isStopping = false;
    qint64 queries = 0; ///< To be updated in all.
    qint64 done = 0;
    QString service;        ///< Asked last.
    QString title;          ///< The query it was asked for.
    QSet<QString> updating; ///< UUIDs of the queries that are being updated.

    End end = End::None;
    qint64 updated = 0;
    qint64 recent = 0; ///< Asked less than 15 minutes ago.
    qint64 failed = 0;
    qint64 added = 0;
    qint64 excluded = 0;
    qint64 blacklisted = 0;
    QMap<QString, QString> serviceErrors;         ///< Why a service could not be read, by its name.
    QMap<SearchService, ServiceVerdict> services; ///< At the end: how those did that were asked.
    QStringList faults;                           ///< One line each, for a person.

    /// 0 to 1; 0 while it is not known how much there is to do.
    [[nodiscard]] double progress() const { return queries > 0 ? double(done) / double(queries) : 0.0; }
};

/// Runs the updater program for a window: starts it, follows its progress lines, stops it. Needs an event loop; main
/// thread only. Destroying it asks a running refresh to stop, and does not wait: it saves what it found and ends.
class RefreshRun final {
public:
    /// `changed` is called from the event loop after each change of the state.
    RefreshRun(QString updaterProgram, HomeFolder home, std::function<void()> changed);
    ~RefreshRun();
    RefreshRun(const RefreshRun&) = delete;
    RefreshRun& operator=(const RefreshRun&) = delete;

    /// The nodes to refresh, folders for everything enabled below them; none for everything. Does nothing while one
    /// runs.
    void start(const QStringList& nodes = {});
    void stop();
    [[nodiscard]] const RefreshState& state() const { return _state; }

private:
    void take(const QByteArray& line);
    void takeLines();
    void finish(int exitStatus, const QString& fault);

    QString _program;
    HomeFolder _home;
    std::function<void()> _changed;
    std::unique_ptr<QProcess> _process;
    RefreshState _state;
};

} // namespace quarry
