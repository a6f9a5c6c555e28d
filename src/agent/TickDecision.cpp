#include "agent/TickDecision.h"

#include <algorithm>

namespace quarry {

namespace {

constexpr double SecondsBetweenReads = 5.0;

void removeInfo(AgentState& state, TickDecision& decision)
{
    decision.removeInfo = decision.removeInfo || state.info == InfoItem::Shown;
    state.info = InfoItem::None;
}

Date aPeriodAfter(const AgentState& state, Date now)
{
    return now.plusSeconds(static_cast<double>(state.periodicity));
}

/// A clock that was put back leaves a next launch behind that nothing would ever reach: it is never more than a period
/// away.
void followClock(AgentState& state, Date now)
{
    if (now < state.previousTick && state.nextLaunch)
        state.nextLaunch = std::min(*state.nextLaunch, aPeriodAfter(state, now));
    state.previousTick = now;
}

/// Until the database was looked at, the icon goes on as it was: what is known may be old.
void followDatabase(AgentState& state, const TickFacts& facts, TickDecision& decision)
{
    if (state.awaitsNews)
        return;
    const double since = facts.now.secondsSince(state.previousLoop);
    decision.lookAtDatabase = since > SecondsBetweenReads || since < 0.0;
    if (decision.lookAtDatabase)
        state.previousLoop = facts.now;
    else
        state.blink = state.newItems;
}

void keepSchedule(AgentState& state, const TickFacts& facts, TickDecision& decision)
{
    if (!state.nextLaunch || *state.nextLaunch < facts.now) {
        decision.launchUpdater = true;
        decision.removeNotifications = true;
        state.updating = true;
    }
    if (!state.updating) {
        followDatabase(state, facts, decision);
        return;
    }
    // The period counts from the end of the refresh.
    state.nextLaunch = aPeriodAfter(state, facts.now);
    removeInfo(state, decision);
}

void showNews(AgentState& state, TickDecision& decision)
{
    if (!state.blink) {
        state.iconOn = false;
        removeInfo(state, decision);
        return;
    }
    decision.icon = state.iconOn ? StatusItem::Icon::Plain : StatusItem::Icon::Highlighted;
    state.iconOn = !state.iconOn;
    // During a refresh the list would be stale at once.
    if (state.info == InfoItem::None && !state.updating) {
        state.info = InfoItem::Wanted;
        decision.lookAtDatabase = true;
    }
}

} // namespace

double secondsToLaunch(const AgentState& state, Date now)
{
    return state.nextLaunch ? state.nextLaunch->secondsSince(now) : 0.0;
}

TickDecision decideTick(AgentState& state, const TickFacts& facts)
{
    TickDecision decision;
    followClock(state, facts.now);
    if (state.updating) {
        state.updating = facts.updaterRuns;
        removeInfo(state, decision);
    }
    if (facts.mainAppRuns) {
        state.blink = false;
        state.previousAppState = true;
        decision.menu = MenuState::MainApplicationOpen;
        decision.removeNotifications = true;
        removeInfo(state, decision);
    } else {
        decision.menu = state.updating ? MenuState::Updating : MenuState::CountingDown;
        decision.secondsToLaunch = secondsToLaunch(state, facts.now);
        keepSchedule(state, facts, decision);
    }
    showNews(state, decision);
    return decision;
}

bool takeNews(AgentState& state, bool unreadResults)
{
    state.awaitsNews = false;
    state.newItems = unreadResults;
    state.blink = unreadResults;
    if (state.info != InfoItem::Wanted)
        return false;
    // A refresh may have been started meanwhile, from the menu.
    state.info = unreadResults && !state.updating ? InfoItem::Shown : InfoItem::None;
    return state.info == InfoItem::Shown;
}

} // namespace quarry
