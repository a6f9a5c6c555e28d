#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"
#include "apps/quarry/Restrictions.h"

namespace quarry {

namespace {

struct Options {
    QStringList queries;
    QStringList texts;
    Restrictions restrictions;
    std::optional<QString> folder;
    std::optional<QString> title;
};

/// The queries named; for a folder, those below it.
QList<QueryCorePtr> membersAmong(const QList<QueryCorePtr>& nodes)
{
    QList<QueryCorePtr> members;
    for (const QueryCorePtr& node : nodes) {
        for (const QueryCorePtr& query : queriesBelow(node)) {
            if (!members.contains(query))
                members.append(query);
        }
    }
    return members;
}

/// Each text once, in the order given: the words of the queries, then the texts typed.
QStringList textsOf(const QList<QueryCorePtr>& members, const QStringList& typed)
{
    QStringList texts;
    for (const QueryCorePtr& query : members) {
        if (query->isCombinedQuery())
            texts += query->combinedQueries().value_or(QStringList());
        else
            texts += query->query().trimmed();
    }
    texts += typed;
    texts.removeAll(QString());
    texts.removeDuplicates();
    return texts;
}

/// A combined query has one set of restrictions. Where nothing is said, it is that of its queries; they must agree.
std::optional<Restricted> sharedRestrictions(const QList<QueryCorePtr>& members)
{
    const Restricted first = members.isEmpty() ? Restricted() : restrictionsOf(*members.first());
    for (const QueryCorePtr& query : members) {
        if (restrictionsOf(*query) != first)
            return std::nullopt;
    }
    return first;
}

Outcome combine(const QueryCorePtr& root, const Options& options)
{
    const NamedNodes named = nodesNamed(root, options.queries);
    if (!named.ok())
        return named.fault;
    const NamedNode folder = targetFolder(root, options.folder);
    if (!folder.ok())
        return folder.fault;
    const QList<QueryCorePtr> members = membersAmong(named.nodes);
    const QStringList texts = textsOf(members, options.texts);
    if (texts.size() < 2)
        return Outcome::wrongUse(QStringLiteral("a combined query needs two texts or more that differ"));
    const std::optional<Restricted> shared = sharedRestrictions(members);
    if (!shared && !options.restrictions.any())
        return Outcome::wrongUse(
            QStringLiteral("these queries are restricted in different ways, and a combined query has one set of "
                           "restrictions for all; say it with --words, --site or --url-regex"));
    const QueryCorePtr node = combinedQuery(texts, given(options.restrictions, shared.value_or(Restricted())));
    if (options.title)
        node->setTitle(options.title);
    folder.node->addChild(node);
    return Outcome::done(QStringLiteral("Added ") + described(*node));
}

} // namespace

void addCombineCommand(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    Command command =
        line.command(QStringLiteral("Queries"), QStringLiteral("combine"),
                     QStringLiteral("Add a query that searches for the words of several; they stay as they are"),
                     {QStringLiteral("quarry combine \"rye starter\" \"wheat starter\" --title Starters"),
                      QStringLiteral("quarry combine Kitchen --text \"spelt starter\" --words exact"),
                      QStringLiteral("quarry combine --text \"rye starter\" --text \"wheat starter\"")});
    command
        .optionalArguments(QStringLiteral("queries"), options->queries,
                           QStringLiteral("Queries; for a folder, all queries below it"))
        .option(QStringLiteral("--text"), QStringLiteral("WORDS"), options->texts,
                QStringLiteral("Words that no query has; may be given several times"))
        .option(QStringLiteral("--folder"), QStringLiteral("FOLDER"), options->folder,
                QStringLiteral("Where to put it; at the top level without"))
        .option(QStringLiteral("--title"), QStringLiteral("TEXT"), options->title,
                QStringLiteral("What to call it; all its words without"));
    withRestrictions(command, options->restrictions).action([options](Session& session) -> Outcome {
        if (isAnyBlank(options->texts))
            return Outcome::wrongUse(QStringLiteral("a --text is empty"));
        if (Outcome fault = faultOfExpression(options->restrictions); !fault.ok())
            return fault;
        return session.edit([&](const QueryCorePtr& root) { return combine(root, *options); });
    });
}

} // namespace quarry
