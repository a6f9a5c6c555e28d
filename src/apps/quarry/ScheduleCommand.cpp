#include "agent/DesktopSession.h"
#include "apps/quarry/AgentControl.h"
#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Output.h"
#include "database/Schedule.h"

#include <QJsonObject>

namespace quarry {

namespace {

struct Options {
    QStringList words;
    bool json = false;
};

/// What the words of the command ask for.
struct Change {
    std::optional<bool> automatic;
    std::optional<qint64> every;
    QString fault;
    [[nodiscard]] bool isEmpty() const { return !automatic && !every; }
};

Change changeOf(const QStringList& words)
{
    Change change;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString& word = words.at(i);
        if (word == QLatin1String("on") || word == QLatin1String("off")) {
            change.automatic = word == QLatin1String("on");
        } else if (word == QLatin1String("every") && i + 1 < words.size()) {
            bool isNumber = false;
            const qint64 minutes = words.at(++i).toLongLong(&isNumber);
            if (!isNumber || minutes < 1 || minutes > Schedule::MostMinutes)
                change.fault = QStringLiteral("\"%1\" is no number of minutes from 1 to %2")
                                   .arg(words.at(i))
                                   .arg(Schedule::MostMinutes);
            change.every = minutes;
        } else {
            change.fault = QStringLiteral("\"%1\": on, off, or every and a number of minutes").arg(word);
        }
    }
    return change;
}

QString save(const Schedule& plan, const Change& change)
{
    QString error = plan.ensureExists();
    if (error.isEmpty() && change.automatic)
        error = plan.setAutomatic(*change.automatic);
    if (error.isEmpty() && change.every)
        error = plan.setPeriodicityMinutes(*change.every);
    return error;
}

/// Where there is no desktop session, the login item is what starts the agent.
QString startWherePossible(const AgentControl& agent)
{
    const QString missing = agent.process() ? QString() : whyNoScreen();
    if (missing.isEmpty())
        return agent.start();
    writeError(QStringLiteral("quarry: %1; the agent starts when you next log in\n").arg(missing));
    return {};
}

/// The agent reads the schedule when it starts, and never again. Answers why it does not follow.
QString letAgentFollow(const AgentControl& agent, const Change& change, bool isAutomatic)
{
    const bool ran = agent.process().has_value();
    if (!isAutomatic || (ran && change.every)) {
        if (QString error = agent.stop(); !error.isEmpty())
            return error;
    }
    if (!isAutomatic) {
        agent.removeLoginItem();
        return {};
    }
    if (!change.automatic)
        return ran ? agent.start() : QString();
    agent.addLoginItem();
    if (agent.isOfOwnHome() || ran)
        return startWherePossible(agent);
    writeError(QStringLiteral("quarry: this is not your own home folder: quarry agent start starts an agent for it\n"));
    return {};
}

Outcome apply(Session& session, const Schedule& plan, const Change& change)
{
    if (!change.fault.isEmpty())
        return Outcome::wrongUse(change.fault);
    if (Outcome ready = session.prepareHome(); !ready.ok())
        return ready;
    if (const QString error = save(plan, change); !error.isEmpty())
        return Outcome::failed(error);
    const bool isAutomatic = plan.read(session.clock().now()).automatic;
    const QString error = letAgentFollow(AgentControl(session.home()), change, isAutomatic);
    return error.isEmpty() ? Outcome::done() : Outcome::failed(QStringLiteral("the schedule is saved, but ") + error);
}

Outcome schedule(Session& session, const Options& options)
{
    if (Outcome home = session.checkHome(); !home.ok())
        return home;
    const Schedule plan(session.home(), session.files());
    if (!options.words.isEmpty()) {
        if (Outcome changed = apply(session, plan, changeOf(options.words)); !changed.ok())
            return changed;
    }
    QString fault;
    const Schedule::Settings settings = plan.read(session.clock().now(), &fault);
    if (!fault.isEmpty())
        writeError(QStringLiteral("quarry: %1; the defaults serve\n").arg(fault));
    if (options.json)
        return Outcome::done(jsonText({{QStringLiteral("automatic"), settings.automatic},
                                       {QStringLiteral("everyMinutes"), settings.periodicityMinutes},
                                       {QStringLiteral("lastUpdate"), jsonTime(settings.lastUpdate)}}));
    return Outcome::done(QStringLiteral("automatic refresh  %1\nevery              %2\nlast full refresh  %3")
                             .arg(settings.automatic ? QStringLiteral("on") : QStringLiteral("off"),
                                  counted(settings.periodicityMinutes, QStringLiteral("minute")),
                                  shownTime(settings.lastUpdate)));
}

} // namespace

void addScheduleCommand(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    line.command(QStringLiteral("Settings"), QStringLiteral("schedule"),
                 QStringLiteral("Show or change when the agent refreshes"),
                 {QStringLiteral("quarry schedule"),
                  QStringLiteral("quarry schedule on              # starts the agent, now and at every login"),
                  QStringLiteral("quarry schedule every 60"), QStringLiteral("quarry schedule on every 60"),
                  QStringLiteral("quarry schedule off")})
        .optionalArguments(QStringLiteral("change"), options->words,
                           QStringLiteral("on, off, every MINUTES; nothing: just show"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return schedule(session, *options); });
}

} // namespace quarry
