#pragma once

#include "apps/updater/RefreshProgress.h"
#include "apps/updater/UpdaterOptions.h"
#include "engines/QueryUpdateParts.h"
#include "engines/RunHealth.h"
#include "engines/SearchServices.h"
#include "platform/Clock.h"
#include "platform/CurlPageLoader.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"
#include "platform/NotificationCenter.h"
#include "platform/Pauser.h"

namespace quarry {

/// One refresh, from the lock that keeps other refreshes out to the saved file. run() is called once.
class Refresh final {
public:
    /// `progress` must outlive it.
    Refresh(UpdaterOptions options, RefreshProgress& progress);

    /// Returns the program's exit status.
    [[nodiscard]] int run();
    /// Nothing more is started and running transfers are broken off: run() returns soon after, with what was merged
    /// by then saved. Thread-safe.
    void stop();

private:
    struct Work;

    [[nodiscard]] int refresh();
    [[nodiscard]] SearchServices services();
    void addPageSteps(UpdateSteps& steps, Work& work);
    [[nodiscard]] int startAll(Work& work);
    [[nodiscard]] int startNamed(Work& work);
    [[nodiscard]] int finish(Work& work);
    [[nodiscard]] int refuse(int status, const QString& reason);
    void noteFault(const QString& fault);
    void keepHealth(const SearchServices& services);

    const UpdaterOptions _options;
    RefreshProgress& _progress;
    const HomeFolder _home;
    SystemClock _clock;
    ThreadPauser _pauser;
    CurlPageLoader _loader;
    CurlPageLoader _publicLoader; ///< Keeps away from private addresses.
    DiskFileStore _files;
    NotificationCenter _notifications;
    RunHealth _health;
};

} // namespace quarry
