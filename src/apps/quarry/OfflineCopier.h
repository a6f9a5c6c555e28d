#pragma once

#include "apps/quarry/QuitWatch.h"
#include "apps/quarry/Session.h"
#include "apps/quarry/StatusLine.h"
#include "engines/FolderCopier.h"
#include "platform/StopSignals.h"

#include <thread>

namespace quarry {

/// "37 pages, 2 without text, 1 could not be read": the pages always, the rest when there is any.
[[nodiscard]] QString textOf(const CopyCounts& counts);

/// Copies pages and shows how far it is. Ctrl-C, or an installer that asks
/// every program to quit, breaks off the page that is being loaded. Made before any other thread
/// of the program; main thread only.
class OfflineCopier final {
public:
    /// The arguments must outlive it.
    OfflineCopier(Session& session, const QString& folder, StatusLine& status);
    ~OfflineCopier();
    OfflineCopier(const OfflineCopier&) = delete;
    OfflineCopier& operator=(const OfflineCopier&) = delete;

    /// Reads where the services are: before the first copy. Answers what is wrong with that; empty when nothing is.
    [[nodiscard]] QString prepare() { return _copier.prepare(_session.home()); }
    [[nodiscard]] QueryCopy copy(const QueryCorePtr& query) { return _copier.copy(query); }

private:
    void watch();

    StopSignals _signals;
    Session& _session;
    NotificationCenter _notifications;
    FolderCopier _copier;
    std::thread _watcher;
    QuitWatch _quitWatch;
};

} // namespace quarry
