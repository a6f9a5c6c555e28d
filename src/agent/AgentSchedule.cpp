#include "agent/AgentSchedule.h"

namespace quarry {

namespace {

constexpr qint64 SecondsOfMinute = 60;

} // namespace

AgentSchedule AgentSchedule::read(const Schedule& schedule, Date now)
{
    AgentSchedule result;
    const Schedule::Settings settings = schedule.read(now, &result.fault);
    result.exists = settings.exists;
    result.automatic = settings.automatic;
    result.periodicity = settings.periodicityMinutes * SecondsOfMinute;
    result.lastUpdate = settings.lastUpdate;
    result.checkForUpdates = settings.checkForUpdates;
    return result;
}

Date AgentSchedule::firstLaunch(Date now) const
{
    const auto period = static_cast<double>(periodicity);
    if (!lastUpdate || now.secondsSince(*lastUpdate) > period)
        return now;
    return lastUpdate->plusSeconds(period);
}

} // namespace quarry
