#pragma once

#include "agent/AgentBundle.h"
#include "agent/Alerts.h"
#include "agent/NewResults.h"
#include "agent/SoftwareUpdates.h"
#include "agent/StatusItem.h"
#include "archive/StringTable.h"
#include "log/Logger.h"
#include "platform/Clock.h"
#include "platform/DistributedNotifications.h"
#include "platform/EventTimers.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"
#include "platform/LoginItemList.h"
#include "platform/ProcessTable.h"
#include "platform/UserNotificationCenter.h"
#include "platform/Workspace.h"

#include <functional>

namespace quarry {

/// What the agent works with. References must outlive it.
struct AgentParts {
    AgentBundle bundle;
    HomeFolder home;
    int osVersion = 0; ///< As operatingSystemVersion() tells it.

    const Clock& clock;
    FileStore& files;
    EventTimers& events;
    ProcessTable& processes;
    Workspace& workspace;
    DistributedNotifications& distributed;
    UserNotificationCenter& notifications;
    LoginItemList& loginItems;
    StatusItem& statusItem;
    Alerts& alerts;
    NewResults& database;
    SoftwareUpdates& softwareUpdates;
    Logger& log;
    const StringTable& texts;
    const StringTable& updaterTexts; ///< The string table "Updater".

    /// Ends the program's event loop.
    std::function<void()> terminate;
    /// Shows the results some other way where the main application cannot be opened; may be empty.
    std::function<void()> openWithoutMainApplication;
};

} // namespace quarry
