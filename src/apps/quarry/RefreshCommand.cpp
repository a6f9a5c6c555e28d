#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"
#include "apps/quarry/RefreshReport.h"
#include "platform/Bundle.h"
#include "platform/ChildProgram.h"

namespace quarry {

namespace {

/// What the updater's exit status says.
enum UpdaterStatus { AllUpdated = 0, NotSaved = 1, WrongUse = 2, SomeNotUpdated = 3, AnotherRuns = 4, Stopped = 5 };

struct Options {
    QStringList queries;
    std::optional<qint64> clockOffset;
    bool quiet = false;
    bool json = false;
};

Outcome outcomeOf(const ChildEnd& end)
{
    if (!end.ok())
        return Outcome::failed(QStringLiteral("the updater failed: ") + end.error);
    switch (end.exitStatus) {
    case AllUpdated:
        return Outcome::done();
    case NotSaved:
        return Outcome::failed(QStringLiteral("the refresh failed"));
    case WrongUse:
        return Outcome::failed(QStringLiteral("the updater refused; was a query removed meanwhile?"));
    case SomeNotUpdated:
        return Outcome::failed(QStringLiteral("some queries were not updated"));
    case AnotherRuns:
        return Outcome::failed(QStringLiteral("another refresh runs already"));
    case Stopped:
        return Outcome::failed(QStringLiteral("stopped; what was found by then is kept"));
    default:
        return Outcome::failed(QStringLiteral("the updater ended with status %1").arg(end.exitStatus));
    }
}

/// The updater's arguments: the queries by their UUIDs, so that names mean the same to both programs.
Outcome updaterArguments(Session& session, const Options& options, QStringList& arguments)
{
    arguments = {QStringLiteral("--home"), session.home().path(), QStringLiteral("--progress")};
    if (options.clockOffset)
        arguments << QStringLiteral("--clock-offset") << QString::number(*options.clockOffset);
    const Session::Loaded tree = session.load();
    if (!tree.ok())
        return tree.fault;
    const NamedNodes named = nodesNamed(tree.root, options.queries);
    for (const QueryCorePtr& node : named.nodes)
        arguments << node->UUID();
    return named.fault;
}

Outcome refresh(Session& session, const Options& options)
{
    QStringList arguments;
    if (Outcome fault = updaterArguments(session, options, arguments); !fault.ok())
        return fault;
    const QString updater = Bundle::ofProgram().updaterProgram();
    if (updater.isEmpty())
        return Outcome::failed(QStringLiteral("QuarrySpotterUpdater is not in the bundle of this program"));

    RefreshReport report(options.quiet || options.json ? StatusLine::Voice::Silent : StatusLine::Voice::Lines);
    const ChildEnd end = runProgram(updater, arguments, [&](const QByteArray& line) { report.take(line); });
    report.finish();
    Outcome outcome = outcomeOf(end);
    if (options.json)
        writeOut(jsonText(report.json()) + u'\n');
    else if (!options.quiet && report.hasSummary())
        writeOut(report.summary() + u'\n');
    for (const QString& fault : report.faults())
        writeError(QStringLiteral("quarry: ") + fault + u'\n');
    return outcome;
}

} // namespace

void addRefreshCommand(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    line.command(QStringLiteral("Refreshing"), QStringLiteral("refresh"),
                 QStringLiteral("Ask the search services for what is new"),
                 {QStringLiteral("quarry refresh                 # everything that is enabled"),
                  QStringLiteral("quarry refresh Kitchen"),
                  QStringLiteral("quarry refresh --quiet         # for cron: says something only when it fails"),
                  QString(), QStringLiteral("Ctrl-C stops it within a second; what was found by then is kept.")})
        .optionalArguments(QStringLiteral("queries"), options->queries,
                           QStringLiteral("Queries or folders; everything without"))
        .flag(QStringLiteral("--quiet,-q"), options->quiet, QStringLiteral("No progress and no summary"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("The summary for programs"))
        .number(QStringLiteral("--clock-offset"), QStringLiteral("SECONDS"), options->clockOffset, -1000000000,
                1000000000,
                QStringLiteral("Shift the refresh's clock, for demonstrations: 1000 passes the 15 minutes within "
                               "which a query is not asked again, 22000 the page cache's six hours"))
        .action([options](Session& session) { return refresh(session, *options); });
}

} // namespace quarry
