#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"

namespace quarry {

namespace {

struct Options {
    QString query;
    QString title;
    QStringList queries;
    std::optional<QString> into;
    std::optional<qint64> position;
    bool top = false;
    bool recursive = false;
};

QString quoted(const QueryCore& node)
{
    return u'"' + shownTitle(node) + u'"';
}

Outcome rename(Session& session, const Options& options)
{
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNode named = nodeNamed(root, options.query);
        if (!named.ok())
            return named.fault;
        const QString before = quoted(*named.node);
        named.node->setTitle(options.title);
        return Outcome::done(QStringLiteral("Renamed %1 to %2").arg(before, quoted(*named.node)));
    });
}

/// Puts the node at a position of the folder, the first being 1. The tree itself cannot insert at the very front,
/// so there the child that was first steps behind.
void place(const QueryCorePtr& node, const QueryCorePtr& folder, std::optional<qint64> position)
{
    if (const QueryCorePtr parent = node->parent())
        parent->removeChild(node);
    if (!position || *position > folder->numberOfChilds()) {
        folder->addChild(node);
    } else if (*position > 1) {
        folder->insertChild(node, *position - 1);
    } else {
        const QueryCorePtr first = folder->childs().value_or(QList<QueryCorePtr>()).value(0);
        folder->insertChild(node, 1);
        if (first && folder->numberOfChilds() > 1) {
            folder->removeChild(first);
            folder->insertChild(first, 1);
        }
    }
}

Outcome move(Session& session, const Options& options)
{
    if (options.top == options.into.has_value())
        return Outcome::wrongUse(QStringLiteral("give either --into FOLDER or --top"));
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNode named = nodeNamed(root, options.query);
        const NamedNode folder = options.top ? NamedNode{root, {}} : folderNamed(root, *options.into);
        if (!named.ok() || !folder.ok())
            return named.ok() ? folder.fault : named.fault;
        if (named.node->contains(folder.node))
            return Outcome::failed(QStringLiteral("a folder cannot be moved into itself"));
        place(named.node, folder.node, options.position);
        return Outcome::done(QStringLiteral("Moved %1 %2")
                                 .arg(quoted(*named.node), options.top
                                                               ? QStringLiteral("to the top level")
                                                               : QStringLiteral("into ") + quoted(*folder.node)));
    });
}

/// "folder \"Kitchen\" with 2 queries and 41 results"
QString removalText(const QueryCorePtr& node)
{
    const QString results = counted(countsOf(node).results, QStringLiteral("result"));
    if (node->isLeaf())
        return QStringLiteral("Removed query %1 with %2").arg(quoted(*node), results);
    return QStringLiteral("Removed folder %1 with %2 and %3")
        .arg(quoted(*node), counted(queriesBelow(node).size(), QStringLiteral("query")), results);
}

Outcome remove(Session& session, const Options& options)
{
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNodes named = nodesNamed(root, options.queries);
        if (!named.ok())
            return named.fault;
        for (const QueryCorePtr& node : named.nodes) {
            if (node->numberOfChilds() > 0 && !options.recursive)
                return Outcome::failed(
                    QStringLiteral("folder %1 is not empty; --recursive removes what is in it too").arg(quoted(*node)));
        }
        QStringList lines;
        for (const QueryCorePtr& node : named.nodes) {
            const QueryCorePtr parent = node->parent();
            if (!parent || !root->contains(node))
                continue; // went with a folder that was named before it
            lines.append(removalText(node));
            parent->deleteChild(node);
        }
        return Outcome::done(lines.join(u'\n'));
    });
}

Outcome setEnabled(Session& session, const Options& options, bool enabled)
{
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNodes named = nodesNamed(root, options.queries);
        if (!named.ok())
            return named.fault;
        qint64 changed = 0;
        for (const QueryCorePtr& node : named.nodes) {
            if (enabled && node->isQueryFolder())
                node->setEnabled(true);
            for (const QueryCorePtr& query : queriesBelow(node)) {
                changed += query->isEnabled() == enabled ? 0 : 1;
                query->setEnabled(enabled);
            }
        }
        return Outcome::done((enabled ? QStringLiteral("Enabled %1") : QStringLiteral("Paused %1"))
                                 .arg(counted(changed, QStringLiteral("query"))));
    });
}

void addEnabling(CommandLine& line, const QString& group)
{
    const auto options = std::make_shared<Options>();
    line.command(group, QStringLiteral("enable"), QStringLiteral("Refresh queries again"),
                 {QStringLiteral("quarry enable \"raised bed\""), QStringLiteral("quarry enable Kitchen")})
        .arguments(QStringLiteral("queries"), options->queries,
                   QStringLiteral("Queries; for a folder, all queries below it"))
        .action([options](Session& session) { return setEnabled(session, *options, true); });
    line.command(group, QStringLiteral("disable"), QStringLiteral("Leave queries out of refreshes"),
                 {QStringLiteral("quarry disable \"raised bed\""), QStringLiteral("quarry disable Kitchen")})
        .arguments(QStringLiteral("queries"), options->queries,
                   QStringLiteral("Queries; for a folder, all queries below it"))
        .action([options](Session& session) { return setEnabled(session, *options, false); });
}

} // namespace

void addTreeCommands(CommandLine& line)
{
    const QString group = QStringLiteral("Queries");
    const auto options = std::make_shared<Options>();
    line.command(group, QStringLiteral("rename"), QStringLiteral("Give a query or folder another title"),
                 {QStringLiteral("quarry rename \"sourdough hydration\" Dough"),
                  QStringLiteral("quarry rename Dough \"\"      # its own words again")})
        .argument(QStringLiteral("query"), options->query, QStringLiteral("The query or folder"))
        .argument(QStringLiteral("title"), options->title, QStringLiteral("The new title; \"\" for none"))
        .action([options](Session& session) { return rename(session, *options); });
    line.command(group, QStringLiteral("move"), QStringLiteral("Put a query or folder somewhere else"),
                 {QStringLiteral("quarry move \"sourdough hydration\" --into Kitchen"),
                  QStringLiteral("quarry move Kitchen --top --position 1")})
        .argument(QStringLiteral("query"), options->query, QStringLiteral("The query or folder"))
        .option(QStringLiteral("--into"), QStringLiteral("FOLDER"), options->into,
                QStringLiteral("The folder to put it into"))
        .flag(QStringLiteral("--top"), options->top, QStringLiteral("To the top level"))
        .number(QStringLiteral("--position"), QStringLiteral("N"), options->position, 1, 1000000,
                QStringLiteral("Its place there, the first being 1; the last without"))
        .action([options](Session& session) { return move(session, *options); });
    line.command(group, QStringLiteral("remove"), QStringLiteral("Remove queries or folders, with their results"),
                 {QStringLiteral("quarry remove \"raised bed\""), QStringLiteral("quarry remove Kitchen --recursive")})
        .arguments(QStringLiteral("queries"), options->queries, QStringLiteral("What to remove"))
        .flag(QStringLiteral("--recursive,-r"), options->recursive, QStringLiteral("Folders with what is in them"))
        .action([options](Session& session) { return remove(session, *options); });
    addEnabling(line, group);
}

} // namespace quarry
