#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"
#include "apps/quarry/Restrictions.h"
#include "session/QueryDefinition.h"

namespace quarry {

namespace {

struct Options {
    QStringList texts;
    Restrictions restrictions;
    std::optional<QString> folder;
    std::optional<QString> title;
    std::optional<QString> blacklist;
    std::optional<QString> checksums;
    std::optional<QString> highlight;
    QString query;
    QString name;
};

QueryCorePtr newQuery(const Options& options)
{
    const Restricted with = given(options.restrictions);
    const QString text = options.texts.join(u' ').trimmed();
    return with.isNone() ? QueryCore::initWithQuery(text)
                         : QueryCore::initWithAdvancedQuery(text, with.words, with.site, with.urlExpression);
}

Outcome add(Session& session, const Options& options)
{
    if (isBlank(options.texts.join(u' ')))
        return Outcome::wrongUse(QStringLiteral("a query needs words"));
    if (Outcome fault = faultOfExpression(options.restrictions); !fault.ok())
        return fault;
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNode folder = targetFolder(root, options.folder);
        if (!folder.ok())
            return folder.fault;
        const QueryCorePtr node = newQuery(options);
        if (!node)
            return Outcome::wrongUse(QStringLiteral("a query needs words"));
        if (options.title)
            node->setTitle(options.title);
        folder.node->addChild(node);
        return Outcome::done(QStringLiteral("Added ") + described(*node));
    });
}

Outcome addFolder(Session& session, const Options& options)
{
    if (isBlank(options.name))
        return Outcome::wrongUse(QStringLiteral("a folder needs a name"));
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNode folder = targetFolder(root, options.folder);
        if (!folder.ok())
            return folder.fault;
        const QueryCorePtr node = QueryCore::initWithQueryFolder(options.name);
        folder.node->addChild(node);
        return Outcome::done(QStringLiteral("Added ") + described(*node));
    });
}

void changeDefinition(const QueryCorePtr& node, const Options& options)
{
    const Restricted with = given(options.restrictions, restrictionsOf(*node));
    const QString text = options.texts.join(u' ').trimmed();
    if (node->isCombinedQuery())
        node->changeWithCombinedQuery(options.texts.isEmpty() ? node->combinedQueries().value_or(QStringList())
                                                              : options.texts,
                                      with.words, with.site, with.urlExpression);
    else
        node->changeWithQuery(text.isEmpty() ? node->query() : text, with.words, with.site, with.urlExpression);
    forgetLastUpdate(*node);
}

Outcome faultOfEdit(const QueryCorePtr& node, const Options& options)
{
    const bool changesDefinition = !options.texts.isEmpty() || options.restrictions.any();
    if (node->isQueryFolder())
        return Outcome::wrongUse(QStringLiteral("%1 is a folder; only queries are edited").arg(shownTitle(*node)));
    if (!changesDefinition && !options.blacklist && !options.checksums && !options.highlight)
        return Outcome::wrongUse(QStringLiteral("nothing to change was given"));
    if (!node->isCombinedQuery() && options.texts.size() > 1)
        return Outcome::wrongUse(QStringLiteral("%1 is no combined query; give one --text").arg(shownTitle(*node)));
    return Outcome::done();
}

Outcome edit(Session& session, const Options& options)
{
    if (isAnyBlank(options.texts))
        return Outcome::wrongUse(QStringLiteral("a query needs words"));
    if (Outcome fault = faultOfExpression(options.restrictions); !fault.ok())
        return fault;
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNode named = nodeNamed(root, options.query);
        if (!named.ok())
            return named.fault;
        const QueryCorePtr& node = named.node;
        if (Outcome fault = faultOfEdit(node, options); !fault.ok())
            return fault;
        if (!options.texts.isEmpty() || options.restrictions.any())
            changeDefinition(node, options);
        if (options.blacklist)
            node->setCheckBlacklist(options.blacklist == QLatin1String("on"));
        if (options.checksums)
            node->setComputeChecksum(options.checksums == QLatin1String("on"));
        if (options.highlight) {
            node->setHighlight(options.highlight);
            node->setMustHighlight(!options.highlight->isEmpty());
        }
        return Outcome::done(QStringLiteral("Changed ") + described(*node));
    });
}

void addAdd(CommandLine& line, const QString& group)
{
    const auto options = std::make_shared<Options>();
    Command command = line.command(
        group, QStringLiteral("add"), QStringLiteral("Add a query"),
        {QStringLiteral("quarry add sourdough hydration"),
         QStringLiteral("quarry add \"raised bed\" --words exact --site gardening.example --folder Garden"),
         QStringLiteral("quarry add fugue --url-regex '/(scores|recordings)/'")});
    command.optionalArguments(QStringLiteral("words"), options->texts, QStringLiteral("The words to search for"))
        .option(QStringLiteral("--folder"), QStringLiteral("FOLDER"), options->folder,
                QStringLiteral("Where to put it; at the top level without"))
        .option(QStringLiteral("--title"), QStringLiteral("TEXT"), options->title,
                QStringLiteral("What to call it; its words without"));
    withRestrictions(command, options->restrictions).action([options](Session& session) {
        return add(session, *options);
    });
}

void addEdit(CommandLine& line, const QString& group)
{
    const auto options = std::make_shared<Options>();
    const QStringList onOff = {QStringLiteral("on"), QStringLiteral("off")};
    Command command =
        line.command(group, QStringLiteral("edit"),
                     QStringLiteral("Change what a query searches for; its results stay until the next refresh"),
                     {QStringLiteral("quarry edit 3F2A91C0 --text \"sourdough crumb\""),
                      QStringLiteral("quarry edit \"raised bed\" --site \"\" --words any"),
                      QStringLiteral("quarry edit Starters --text \"rye starter\" --text \"spelt starter\"")});
    command.argument(QStringLiteral("query"), options->query, QStringLiteral("The query"))
        .option(QStringLiteral("--text"), QStringLiteral("WORDS"), options->texts,
                QStringLiteral("The words to search for; of a combined query, each of its texts"));
    withRestrictions(command, options->restrictions)
        .choice(QStringLiteral("--blacklist"), options->blacklist, onOff,
                QStringLiteral("Whether the shared blacklist applies"))
        .choice(QStringLiteral("--checksums"), options->checksums, onOff,
                QStringLiteral("Whether changed pages count as unread again"))
        .option(QStringLiteral("--highlight"), QStringLiteral("WORDS"), options->highlight,
                QStringLiteral("Words to highlight; \"\" for none"))
        .action([options](Session& session) { return edit(session, *options); });
}

} // namespace

void addMakingCommands(CommandLine& line)
{
    const QString group = QStringLiteral("Queries");
    addAdd(line, group);
    const auto options = std::make_shared<Options>();
    line.command(
            group, QStringLiteral("add-folder"), QStringLiteral("Add a folder"),
            {QStringLiteral("quarry add-folder Kitchen"), QStringLiteral("quarry add-folder Bread --folder Kitchen")})
        .argument(QStringLiteral("name"), options->name, QStringLiteral("What to call it"))
        .option(QStringLiteral("--folder"), QStringLiteral("FOLDER"), options->folder,
                QStringLiteral("Where to put it; at the top level without"))
        .action([options](Session& session) { return addFolder(session, *options); });
    addEdit(line, group);
}

} // namespace quarry
