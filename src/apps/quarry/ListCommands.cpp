#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"
#include "exchange/JsonShapes.h"
#include "exchange/Names.h"

#include <QJsonArray>

namespace quarry {

namespace {

struct Options {
    std::optional<QString> folder;
    QString query;
    bool json = false;
};

bool isEmptyTree(const QueryCorePtr& root)
{
    return root->numberOfChilds() == 0;
}

QString lineOf(const QueryCorePtr& node, int depth)
{
    const NodeCounts counts = countsOf(node);
    const bool isFolder = node->isQueryFolder();
    QString title =
        QString(qsizetype(depth) * 2, u' ') + shownTitle(*node) + (isFolder ? QStringLiteral("/") : QString());
    if (!isFolder && !node->isEnabled())
        title += QStringLiteral(" (paused)");
    const QString line = QStringLiteral("%1 %2  %3  %4  %5")
                             .arg(counts.unread, 6)
                             .arg(counts.results, 7)
                             .arg(isFolder ? QString() : shownTime(node->date()), -16)
                             .arg(shortId(node->UUID()), -8)
                             .arg(QString());
    return counts.unread > 0 ? line + strong(title) : line + title;
}

QString tableOf(const QueryCorePtr& top, bool withTop)
{
    QString text = faint(QStringLiteral("UNREAD RESULTS  LAST UPDATE       ID        QUERY")) + u'\n';
    qint64 queries = 0;
    qint64 folders = 0;
    walk(top, [&](const QueryCorePtr& node, int depth) {
        if (node == top && !withTop)
            return;
        text += lineOf(node, withTop ? depth : depth - 1) + u'\n';
        ++(node->isQueryFolder() ? folders : queries);
    });
    const NodeCounts counts = countsOf(top);
    text += QStringLiteral("%1, %2: %3, %4 unread")
                .arg(counted(queries, QStringLiteral("query")), counted(folders, QStringLiteral("folder")),
                     counted(counts.results, QStringLiteral("result")))
                .arg(counts.unread);
    if (counts.hidden > 0)
        text += QStringLiteral(", %1 hidden").arg(counts.hidden);
    return text;
}

Outcome list(Session& session, const Options& options)
{
    const Session::Loaded tree = session.load();
    if (!tree.ok())
        return tree.fault;
    QueryCorePtr top = tree.root;
    if (options.folder) {
        const NamedNode named = nodeNamed(tree.root, *options.folder);
        if (!named.ok())
            return named.fault;
        top = named.node;
    }
    if (options.json) {
        const QJsonObject node = jsonOfNode(top);
        return Outcome::done(
            jsonText({{QStringLiteral("queries"),
                       options.folder ? QJsonArray{node} : node.value(QStringLiteral("children")).toArray()}}));
    }
    if (isEmptyTree(tree.root))
        return Outcome::done(QStringLiteral("No queries yet. quarry add \"SOME WORDS\" makes the first."));
    return Outcome::done(tableOf(top, options.folder.has_value()));
}

/// "words   all": one line of what show prints; nothing for an empty value.
QString field(const QString& name, const QString& value)
{
    return value.isEmpty() ? QString() : QStringLiteral("%1 %2\n").arg(name, -16).arg(value);
}

QString definitionOf(const QueryCorePtr& node)
{
    const auto yes = [](bool on) { return on ? QStringLiteral("on") : QStringLiteral("off"); };
    QStringList combined;
    for (const QString& text : node->combinedQueries().value_or(QStringList()))
        combined.append(u'"' + shown(text) + u'"');
    return field(QStringLiteral("words"), shown(node->query())) +
           field(QStringLiteral("combined"), combined.join(QLatin1String(", "))) +
           field(QStringLiteral("matching"), node->isAdvancedQuery() ? wordsModeName(node->searchType()) : QString()) +
           field(QStringLiteral("site"), shown(node->websiteRestriction())) +
           field(QStringLiteral("URL expression"), shown(node->urlRegularExpressions())) +
           field(QStringLiteral("last update"), shownTime(node->date())) +
           field(QStringLiteral("refreshed"),
                 node->isEnabled() ? QStringLiteral("yes") : QStringLiteral("no, paused")) +
           field(QStringLiteral("blacklist"), yes(node->isCheckingBlacklist())) +
           field(QStringLiteral("checksums"), yes(node->isComputingChecksum())) +
           field(QStringLiteral("highlight"), shown(node->highlight())) +
           field(QStringLiteral("excluded hosts"), shown(node->excludedHosts().join(u' ')));
}

Outcome show(Session& session, const Options& options)
{
    const Session::Loaded tree = session.load();
    if (!tree.ok())
        return tree.fault;
    const NamedNode named = nodeNamed(tree.root, options.query);
    if (!named.ok())
        return named.fault;
    const QueryCorePtr& node = named.node;
    if (options.json)
        return Outcome::done(jsonText(jsonOfDefinition(node)));

    const NodeCounts counts = countsOf(node);
    QString text = strong(shownTitle(*node)) + u'\n';
    text += field(QStringLiteral("ID"), shown(node->UUID()));
    text += field(QStringLiteral("kind"), kindName(node->kind()));
    const QueryCorePtr parent = node->parent();
    text += field(QStringLiteral("folder"), parent && parent != tree.root ? shownTitle(*parent) : QString());
    if (node->isLeaf())
        text += definitionOf(node);
    else
        text += field(QStringLiteral("queries"), QString::number(queriesBelow(node).size()));
    text += field(QStringLiteral("results"),
                  QStringLiteral("%1, %2 unread, %3 hidden").arg(counts.results).arg(counts.unread).arg(counts.hidden));
    return Outcome::done(text.trimmed());
}

} // namespace

void addListCommands(CommandLine& line)
{
    const QString group = QStringLiteral("Looking");
    const auto options = std::make_shared<Options>();
    line.command(group, QStringLiteral("list"), QStringLiteral("The tree of queries, with counts"),
                 {QStringLiteral("quarry list"), QStringLiteral("quarry list Kitchen"),
                  QStringLiteral("quarry list --json")})
        .optionalArgument(QStringLiteral("folder"), options->folder, QStringLiteral("Only this folder or query"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return list(session, *options); });
    line.command(group, QStringLiteral("show"), QStringLiteral("Everything about one query or folder"),
                 {QStringLiteral("quarry show \"sourdough hydration\""), QStringLiteral("quarry show 3F2A91C0 --json")})
        .argument(QStringLiteral("query"), options->query, QStringLiteral("The query or folder"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return show(session, *options); });
}

} // namespace quarry
