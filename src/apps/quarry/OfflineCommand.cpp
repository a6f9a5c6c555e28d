#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Naming.h"
#include "apps/quarry/OfflineCopier.h"
#include "apps/quarry/Output.h"

#include <QDir>
#include <QJsonArray>

namespace quarry {

namespace {

struct Options {
    QString node;
    QString folder;
    bool quiet = false;
    bool json = false;
};

/// What a run of the command has come to so far.
struct Report {
    qsizetype queries = 0;
    qsizetype copied = 0;
    qsizetype there = 0;
    qsizetype failed = 0;
    bool stopped = false;
    CopyCounts counts;
    QJsonArray array;
};

QString endName(QueryCopy::End end)
{
    switch (end) {
    case QueryCopy::End::Copied:
        return QStringLiteral("copied");
    case QueryCopy::End::There:
        return QStringLiteral("there");
    case QueryCopy::End::Stopped:
        return QStringLiteral("stopped");
    case QueryCopy::End::Failed:
        break;
    }
    return QStringLiteral("failed");
}

QString lineOf(const QueryCopy& copy)
{
    switch (copy.end) {
    case QueryCopy::End::Copied:
        return textOf(copy.counts);
    case QueryCopy::End::There:
        return QStringLiteral("a copy is there already and stays as it is");
    case QueryCopy::End::Stopped:
        return QStringLiteral("stopped, nothing of it is kept");
    case QueryCopy::End::Failed:
        break;
    }
    return QStringLiteral("failed");
}

QJsonObject jsonOf(const CopyCounts& counts)
{
    return {{QStringLiteral("pages"), counts.copied},
            {QStringLiteral("withoutText"), counts.withoutText},
            {QStringLiteral("unreadable"), counts.unreadable},
            {QStringLiteral("leftOut"), counts.unnamed}};
}

QJsonObject jsonOf(const QueryCopy& copy, const QueryCore& query, const QString& folder)
{
    const bool isThere = copy.end == QueryCopy::End::Copied || copy.end == QueryCopy::End::There;
    QJsonObject object = jsonOf(copy.counts);
    object.insert(QStringLiteral("id"), query.UUID());
    object.insert(QStringLiteral("title"), query.title());
    object.insert(QStringLiteral("outcome"), endName(copy.end));
    object.insert(QStringLiteral("folder"), isThere ? QJsonValue(folder + u'/' + query.UUID()) : QJsonValue());
    object.insert(QStringLiteral("unreadablePages"), QJsonArray::fromStringList(copy.unreadable));
    object.insert(QStringLiteral("error"), copy.error);
    return object;
}

void take(Report& report, const QueryCopy& copy)
{
    report.copied += copy.end == QueryCopy::End::Copied;
    report.there += copy.end == QueryCopy::End::There;
    report.failed += copy.end == QueryCopy::End::Failed;
    report.stopped = copy.end == QueryCopy::End::Stopped;
    if (copy.end == QueryCopy::End::Copied)
        report.counts.add(copy.counts);
}

/// One after the other, until one is stopped or nothing can be written.
Report copyAll(const QList<QueryCorePtr>& queries, const QString& folder, OfflineCopier& copier, StatusLine& status)
{
    Report report;
    report.queries = queries.size();
    for (const QueryCorePtr& query : queries) {
        const QueryCopy copy = copier.copy(query);
        take(report, copy);
        report.array.append(jsonOf(copy, *query, folder));
        const QString title = shownTitle(*query);
        status.say(QStringLiteral("[%1/%2] %3: ").arg(report.array.size()).arg(report.queries).arg(title) +
                   lineOf(copy));
        if (!copy.error.isEmpty())
            writeError(QStringLiteral("quarry: %1: %2\n").arg(title, shown(copy.error)));
        if (report.stopped || copy.hopeless)
            break;
    }
    return report;
}

QString summary(const Report& report, const QString& folder)
{
    QString text = QStringLiteral("%1 copied to %2: %3")
                       .arg(counted(report.copied, QStringLiteral("query")), shown(folder), textOf(report.counts));
    if (report.there > 0)
        text += QStringLiteral("; %1 there already").arg(report.there);
    if (report.failed > 0)
        text += QStringLiteral("; %1 failed").arg(report.failed);
    return text;
}

Outcome outcomeOf(const Report& report)
{
    if (report.stopped)
        return Outcome::failed(QStringLiteral("stopped; copies that were complete by then are kept"));
    if (report.failed > 0)
        return Outcome::failed(QStringLiteral("%1 could not be copied; nothing of %2 is kept")
                                   .arg(counted(report.failed, QStringLiteral("query")),
                                        report.failed == 1 ? QStringLiteral("it") : QStringLiteral("them")));
    return Outcome::done();
}

QJsonObject jsonOf(const Report& report, const QString& folder)
{
    QJsonObject object = jsonOf(report.counts);
    object.insert(QStringLiteral("folder"), folder);
    object.insert(QStringLiteral("stopped"), report.stopped);
    object.insert(QStringLiteral("copied"), qint64(report.copied));
    object.insert(QStringLiteral("there"), qint64(report.there));
    object.insert(QStringLiteral("failed"), qint64(report.failed));
    object.insert(QStringLiteral("queries"), report.array);
    return object;
}

Outcome copyOffline(Session& session, const Options& options)
{
    if (options.folder.isEmpty())
        return Outcome::wrongUse(QStringLiteral("the folder to copy into is empty"));
    const QString folder = QDir::cleanPath(QDir(options.folder).absolutePath());
    StatusLine status(options.quiet || options.json ? StatusLine::Voice::Silent : StatusLine::Voice::Lines);
    OfflineCopier copier(session, folder, status);
    const Session::Loaded tree = session.load();
    if (!tree.ok())
        return tree.fault;
    const NamedNode named = nodeNamed(tree.root, options.node);
    if (!named.ok())
        return named.fault;
    if (const QString fault = copier.prepare(); !fault.isEmpty())
        writeError(QStringLiteral("quarry: %1; the public services serve\n").arg(shown(fault)));

    const Report report = copyAll(queriesBelow(named.node), folder, copier, status);
    status.clear();
    if (options.json)
        writeOut(jsonText(jsonOf(report, folder)) + u'\n');
    else if (!options.quiet)
        writeOut(summary(report, folder) + u'\n');
    return outcomeOf(report);
}

} // namespace

void addOfflineCommands(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    Command offline = line.command(QStringLiteral("Results"), QStringLiteral("offline"),
                                   QStringLiteral("Keep the text of the pages behind results"),
                                   {QStringLiteral("quarry offline copy \"sourdough hydration\" ~/Reading")});
    offline
        .command(
            QStringLiteral("copy"), QStringLiteral("Copy the text of the pages behind the results into a folder"),
            {QStringLiteral("quarry offline copy \"sourdough hydration\" ~/Reading"),
             QStringLiteral("quarry offline copy Kitchen ~/Reading          # every query in the folder"), QString(),
             QStringLiteral("Each query gets a folder named after its ID, with a text file a result, named after"),
             QStringLiteral("the result's ID. A copy that is there already is never changed: remove it to have it"),
             QStringLiteral("made anew. Ctrl-C stops within a second; of an unfinished copy nothing is kept.")})
        .argument(QStringLiteral("query"), options->node,
                  QStringLiteral("The query, or a folder for all queries in it"))
        .argument(QStringLiteral("folder"), options->folder,
                  QStringLiteral("Where the copies go; it is made when missing"))
        .flag(QStringLiteral("--quiet,-q"), options->quiet, QStringLiteral("No progress and no summary"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("The summary for programs"))
        .action([options](Session& session) { return copyOffline(session, *options); });
}

} // namespace quarry
