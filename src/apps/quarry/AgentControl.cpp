#include "apps/quarry/AgentControl.h"

#include "agent/AgentLock.h"
#include "agent/DesktopSession.h"
#include "agent/LXAppUtils.h"
#include "agent/ProcessLookup.h"
#include "platform/Bundle.h"
#include "platform/DetachedProgram.h"
#include "platform/SystemVersion.h"
#include "platform/XdgLoginItems.h"
#include "platform/linux/LinuxProcessTable.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace quarry {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds Patience = 10s;
constexpr std::chrono::milliseconds BetweenLooks = 20ms;

QString agentBundle()
{
    const QString contents = Bundle::ofProgram().contentsFolder();
    return contents.isEmpty() ? QString() : contents + QStringLiteral("/Agents/QuarrySpotterAgent.app");
}

/// What an agent noted before it crashed may be the number of any process by now.
bool isAgent(std::int64_t process)
{
    LinuxProcessTable table;
    const auto agents = processInfoForDaemonNamed(QStringLiteral("QuarrySpotterAgent"), table.processes())
                            .value_or(QList<DaemonInfo>());
    return std::any_of(agents.begin(), agents.end(),
                       [process](const DaemonInfo& agent) { return agent.daemonPID == process; });
}

/// Looks again and again, for a while; false when it is never so.
template <typename Condition>
bool waitUntil(Condition holds)
{
    const auto end = std::chrono::steady_clock::now() + Patience;
    while (!holds()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(BetweenLooks);
    }
    return true;
}

/// What the login items are asked with.
class OwnLoginItem final {
public:
    OwnLoginItem(const HomeFolder& home, const QString& bundle)
        : utils(AgentBundle::at(bundle), operatingSystemVersion(), _list, LegacyLoginItems(home, _files))
    {
    }

private:
    XdgLoginItems _list;
    DiskFileStore _files;

public:
    LXAppUtils utils;
};

} // namespace

AgentControl::AgentControl(HomeFolder home) : _home(std::move(home)), _bundle(agentBundle()) {}

std::optional<std::int64_t> AgentControl::process() const
{
    return AgentLock::holder(_home);
}

bool AgentControl::isOfOwnHome() const
{
    return _home.path() == HomeFolder::ofUser().path();
}

bool AgentControl::isLoginItem() const
{
    return isOfOwnHome() && !_bundle.isEmpty() && OwnLoginItem(_home, _bundle).utils.isMyAppInLoginItems();
}

void AgentControl::addLoginItem() const
{
    if (isOfOwnHome() && !_bundle.isEmpty())
        OwnLoginItem(_home, _bundle).utils.setMyAppInLoginItems(true);
}

void AgentControl::removeLoginItem() const
{
    if (isOfOwnHome() && !_bundle.isEmpty())
        OwnLoginItem(_home, _bundle).utils.removeMyAppInLoginItems();
}

QString AgentControl::program() const
{
    return _bundle.isEmpty() ? QString() : Bundle::at(_bundle).executable();
}

QString AgentControl::start() const
{
    if (process())
        return {};
    if (program().isEmpty())
        return QStringLiteral("QuarrySpotterAgent is not in the bundle of this program");
    if (QString missing = whyNoScreen(); !missing.isEmpty())
        return missing;
    const QStringList arguments = isOfOwnHome() ? QStringList() : QStringList{QStringLiteral("--home"), _home.path()};
    if (!launchDetached(program(), arguments))
        return QStringLiteral("%1 cannot be started").arg(program());
    if (!waitUntilRuns())
        return QStringLiteral("the agent was started but does not run; %1 in a terminal says why").arg(program());
    return {};
}

bool AgentControl::waitUntilRuns() const
{
    return waitUntil([this] { return process().value_or(0) != 0; });
}

QString AgentControl::stop() const
{
    if (!process())
        return {};
    // One that has only just started tells its process in a moment.
    (void)waitUntilRuns();
    const std::int64_t agent = process().value_or(0);
    if (isAgent(agent))
        LinuxProcessTable().terminate(agent);
    // It lets go of the lock a little before it is gone; the next one would take it for another agent.
    const bool ended = AgentLock::waitUntilFree(_home, Patience) && waitUntil([agent] { return !isAgent(agent); });
    return ended ? QString() : QStringLiteral("the agent (process %1) does not end").arg(agent);
}

} // namespace quarry
