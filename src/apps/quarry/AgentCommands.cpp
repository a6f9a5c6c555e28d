#include "agent/DesktopSession.h"
#include "apps/quarry/AgentControl.h"
#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Output.h"
#include "database/Schedule.h"

#include <QJsonObject>

namespace quarry {

namespace {

struct Options {
    bool json = false;
};

QString runsText(std::int64_t process)
{
    return QStringLiteral("The agent runs, process %1.").arg(process);
}

Outcome status(Session& session, const Options& options)
{
    if (Outcome home = session.checkHome(); !home.ok())
        return home;
    const AgentControl agent(session.home());
    const std::optional<std::int64_t> process = agent.process();
    const Schedule::Settings schedule = Schedule(session.home(), session.files()).read(session.clock().now());
    if (options.json)
        return Outcome::done(
            jsonText({{QStringLiteral("running"), process.has_value()},
                      {QStringLiteral("process"), process ? QJsonValue(qint64(*process)) : QJsonValue()},
                      {QStringLiteral("loginItem"), agent.isLoginItem()},
                      {QStringLiteral("automatic"), schedule.automatic}}));
    return Outcome::done(
        QStringLiteral("agent              %1\nstarts at login    %2\nautomatic refresh  %3")
            .arg(process ? QStringLiteral("runs, process %1").arg(*process) : QStringLiteral("does not run"),
                 agent.isLoginItem() ? QStringLiteral("yes") : QStringLiteral("no"),
                 schedule.automatic ? QStringLiteral("on") : QStringLiteral("off")));
}

Outcome start(Session& session)
{
    if (Outcome home = session.checkHome(); !home.ok())
        return home;
    if (!Schedule(session.home(), session.files()).read(session.clock().now()).automatic)
        return Outcome::failed(QStringLiteral("automatic refresh is off, and the agent would leave at once\n"
                                              "Switch it on: quarry schedule on"));
    const AgentControl agent(session.home());
    if (const QString error = agent.start(); !error.isEmpty())
        return Outcome::failed(error);
    if (const QString missing = whyNoSessionBus(); !missing.isEmpty())
        writeError(QStringLiteral("quarry: %1; the agent shows no notifications\n").arg(missing));
    return Outcome::done(runsText(agent.process().value_or(0)));
}

Outcome stop(Session& session)
{
    const AgentControl agent(session.home());
    const bool ran = agent.process().has_value();
    const QString error = agent.stop();
    if (!error.isEmpty())
        return Outcome::failed(error);
    return Outcome::done(ran ? QStringLiteral("The agent has ended. It starts again when you next log in; to keep it "
                                              "from that: quarry schedule off")
                             : QStringLiteral("The agent does not run."));
}

} // namespace

void addAgentCommands(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    Command agent = line.command(QStringLiteral("Refreshing"), QStringLiteral("agent"),
                                 QStringLiteral("Start, end, or look for the agent in the status bar"),
                                 {QStringLiteral("quarry agent status"), QStringLiteral("quarry agent start")});
    agent
        .command(QStringLiteral("start"), QStringLiteral("Start it in this desktop session"),
                 {QStringLiteral("quarry agent start")})
        .takesLong()
        .action([](Session& session) { return start(session); });
    agent
        .command(QStringLiteral("stop"), QStringLiteral("End it until the next login"),
                 {QStringLiteral("quarry agent stop")})
        .takesLong()
        .action([](Session& session) { return stop(session); });
    agent
        .command(QStringLiteral("status"), QStringLiteral("Whether it runs, and whether it starts at login"),
                 {QStringLiteral("quarry agent status --json")})
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return status(session, *options); });
}

} // namespace quarry
