#pragma once

#include "agent/StatusItem.h"
#include "platform/Date.h"

#include <optional>

namespace quarry {

/// The info item of the menu. A list that is wanted is shown when a look at the database brought it.
enum class InfoItem { None, Wanted, Shown };

/// What the agent remembers from one second to the next.
struct AgentState {
    bool updating = false;          ///< A refresh that this agent started runs: the updater application is alive.
    qint64 periodicity = 1800;      ///< Seconds between two refreshes.
    std::optional<Date> nextLaunch; ///< When the next refresh starts; none: at once.
    bool iconOn = false;            ///< The phase of the blinking.
    bool newItems = false;          ///< The database holds unread results.
    bool blink = false;
    bool previousAppState = false; ///< Whether the main application ran at start or was seen since.
    Date previousLoop;             ///< When the tick last asked for a look at the database.
    bool awaitsNews = false;       ///< A look at the database is coming, or goes on.
    Date previousTick;
    InfoItem info = InfoItem::None;
};

/// What is to be known at a tick.
struct TickFacts {
    Date now;
    bool mainAppRuns = false;
    bool updaterRuns = false;
};

/// The three ways in which the menu's items look.
enum class MenuState { CountingDown, Updating, MainApplicationOpen };

/// What is to be done after a tick, in this order.
struct TickDecision {
    MenuState menu = MenuState::CountingDown;
    double secondsToLaunch = 0.0; ///< For the countdown; negative when overdue.
    bool removeNotifications = false;
    bool launchUpdater = false;
    bool removeInfo = false;
    StatusItem::Icon icon = StatusItem::Icon::Plain;
    bool lookAtDatabase = false; ///< takeNews() is to be told what it finds.
};

/// One second of the agent: what to show, whether to start a refresh. Works on wall time, so that a machine that slept
/// past a due time, or past several, starts one refresh when it wakes.
[[nodiscard]] TickDecision decideTick(AgentState& state, const TickFacts& facts);

/// After a look at the database. True when the info item is to be built of what was found.
[[nodiscard]] bool takeNews(AgentState& state, bool unreadResults);

/// The state of the menu outside the tick.
[[nodiscard]] double secondsToLaunch(const AgentState& state, Date now);

} // namespace quarry
