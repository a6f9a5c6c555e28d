#pragma once

#include "apps/quarry/Outcome.h"
#include "database/QueryDatabaseEngine.h"
#include "platform/Clock.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"
#include "platform/NotificationCenter.h"
#include "platform/Pauser.h"

#include <functional>
#include <memory>

namespace quarry {

/// What one command works with: the home folder and what lies in it. A command that only reads never writes and
/// makes no file or folder; a command that changes something does so in one edit. Main thread only.
class Session final {
public:
    explicit Session(const QString& homeFolder) : _home(homeFolder) {}

    [[nodiscard]] const HomeFolder& home() const { return _home; }
    [[nodiscard]] FileStore& files() { return _files; }
    [[nodiscard]] Clock& clock() { return _clock; }

    /// Whether the home folder can be used at all; otherwise says why not.
    [[nodiscard]] Outcome checkHome() const;
    /// As checkHome, and makes the folders that are missing in it: before something is changed.
    [[nodiscard]] Outcome prepareHome() const;

    struct Loaded {
        QueryCorePtr root; ///< None when there is a fault.
        Outcome fault;
        [[nodiscard]] bool ok() const { return root != nullptr; }
    };
    /// The tree as it is in the file; empty when there is none yet.
    [[nodiscard]] Loaded load();

    /// Applies one change to the tree that is in the file by then, and saves. Nothing is saved unless the change is
    /// done; its text is said only once it is saved.
    using Change = std::function<Outcome(const QueryCorePtr& root)>;
    [[nodiscard]] Outcome edit(const Change& change);

private:
    [[nodiscard]] QueryDatabaseEngine& engine();

    HomeFolder _home;
    DiskFileStore _files;
    SystemClock _clock;
    ThreadPauser _pauser;
    NotificationCenter _notifications;
    std::unique_ptr<QueryDatabaseEngine> _engine;
};

} // namespace quarry
