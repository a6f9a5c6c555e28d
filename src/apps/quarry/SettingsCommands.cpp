#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Output.h"
#include "database/Preferences.h"
#include "database/Schedule.h"

namespace quarry {

namespace {

constexpr qint64 Most = 1000000;

struct Options {
    std::optional<qint64> resultsPerService;
    std::optional<qint64> newLinks;
    std::optional<QString> automatic;
    std::optional<qint64> every;
    bool json = false;
};

Outcome changePreferences(Session& session, const Preferences& preferences, const Options& options)
{
    if (Outcome ready = session.prepareHome(); !ready.ok())
        return ready;
    QString error;
    if (options.resultsPerService)
        error = preferences.setResultsPerEngine(*options.resultsPerService);
    if (error.isEmpty() && options.newLinks)
        error = preferences.setNumberOfNewLinks(*options.newLinks);
    return error.isEmpty() ? Outcome::done() : Outcome::failed(error);
}

Outcome prefs(Session& session, const Options& options)
{
    if (Outcome home = session.checkHome(); !home.ok())
        return home;
    const Preferences preferences(session.home(), session.files());
    if (options.resultsPerService || options.newLinks) {
        if (Outcome changed = changePreferences(session, preferences, options); !changed.ok())
            return changed;
    }
    QString fault;
    const Preferences::Settings settings = preferences.read(&fault);
    if (!fault.isEmpty())
        writeError(QStringLiteral("quarry: %1; the defaults serve\n").arg(fault));
    if (options.json)
        return Outcome::done(jsonText({{QStringLiteral("resultsPerService"), settings.resultsPerEngine},
                                       {QStringLiteral("newLinksPerUpdate"), settings.numberOfNewLinks}}));
    return Outcome::done(QStringLiteral("results per service   %1\nnew links per update  %2")
                             .arg(settings.resultsPerEngine)
                             .arg(settings.numberOfNewLinks == 0 ? QStringLiteral("no limit")
                                                                 : QString::number(settings.numberOfNewLinks)));
}

Outcome changeSchedule(Session& session, const Schedule& plan, const Options& options)
{
    if (Outcome ready = session.prepareHome(); !ready.ok())
        return ready;
    QString error = plan.ensureExists();
    if (error.isEmpty() && options.automatic)
        error = plan.setAutomatic(options.automatic == QLatin1String("on"));
    if (error.isEmpty() && options.every)
        error = plan.setPeriodicityMinutes(*options.every);
    return error.isEmpty() ? Outcome::done() : Outcome::failed(error);
}

Outcome schedule(Session& session, const Options& options)
{
    if (Outcome home = session.checkHome(); !home.ok())
        return home;
    const Schedule plan(session.home(), session.files());
    if (options.automatic || options.every) {
        if (Outcome changed = changeSchedule(session, plan, options); !changed.ok())
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

void addSettingsCommands(CommandLine& line)
{
    const QString group = QStringLiteral("Settings");
    const auto options = std::make_shared<Options>();
    line.command(group, QStringLiteral("prefs"), QStringLiteral("Show or change the preferences"),
                 {QStringLiteral("quarry prefs"), QStringLiteral("quarry prefs --results-per-service 100"),
                  QStringLiteral("quarry prefs --new-links 0      # no limit")})
        .number(QStringLiteral("--results-per-service"), QStringLiteral("N"), options->resultsPerService, 1, Most,
                QStringLiteral("How many results a refresh asks each service for"))
        .number(QStringLiteral("--new-links"), QStringLiteral("N"), options->newLinks, 0, Most,
                QStringLiteral("How many new links an update may add to a query; 0 for no limit"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return prefs(session, *options); });
    line.command(group, QStringLiteral("schedule"), QStringLiteral("Show or change when refreshes are due"),
                 {QStringLiteral("quarry schedule"), QStringLiteral("quarry schedule --automatic on --every 60")})
        .choice(QStringLiteral("--automatic"), options->automatic, {QStringLiteral("on"), QStringLiteral("off")},
                QStringLiteral("Whether the agent refreshes by itself"))
        .number(QStringLiteral("--every"), QStringLiteral("MINUTES"), options->every, 1, Most,
                QStringLiteral("How often"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return schedule(session, *options); });
}

} // namespace quarry
