#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Output.h"
#include "database/Preferences.h"

namespace quarry {

namespace {

constexpr qint64 Most = 1000000;

struct Options {
    std::optional<qint64> resultsPerService;
    std::optional<qint64> newLinks;
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

} // namespace

void addSettingsCommands(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    line.command(QStringLiteral("Settings"), QStringLiteral("prefs"), QStringLiteral("Show or change the preferences"),
                 {QStringLiteral("quarry prefs"), QStringLiteral("quarry prefs --results-per-service 100"),
                  QStringLiteral("quarry prefs --new-links 0      # no limit")})
        .number(QStringLiteral("--results-per-service"), QStringLiteral("N"), options->resultsPerService, 1, Most,
                QStringLiteral("How many results a refresh asks each service for"))
        .number(QStringLiteral("--new-links"), QStringLiteral("N"), options->newLinks, 0, Most,
                QStringLiteral("How many new links an update may add to a query; 0 for no limit"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return prefs(session, *options); });
}

} // namespace quarry
