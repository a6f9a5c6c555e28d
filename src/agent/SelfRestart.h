#pragma once

#include "agent/AgentBundle.h"
#include "platform/EventTimers.h"
#include "platform/Workspace.h"

#include <cstdint>
#include <functional>

namespace quarry {

/// The agent's periodic restart: waits while it would disturb, then has the helper open the bundle again once this
/// process has ended.
class SelfRestart final {
public:
    struct Parts {
        AgentBundle bundle;
        std::int64_t ownProcessId;
        Workspace& workspace;
        EventTimers& events;
        std::function<bool()> isBusy;      ///< A refresh runs, or a window of the software updater is shown.
        std::function<bool()> mainAppRuns; ///< Looks at the process table.
        std::function<void()> terminate;
    };

    explicit SelfRestart(Parts parts) : _parts(std::move(parts)) {}

    /// Nothing while the agent is busy. While the main application runs it looks again every 5 seconds, and puts off
    /// what began meanwhile as well. Without the helper the agent carries on.
    void autoRelaunchDaemon();

private:
    void lookAgain();
    void relaunch();

    Parts _parts;
    bool _waiting = false;
};

} // namespace quarry
