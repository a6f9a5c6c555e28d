#include "apps/quarry/CommandLine.h"
#include "apps/quarry/ExpressionFault.h"
#include "apps/quarry/Json.h"
#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"

namespace quarry {

namespace {

/// What makes a query advanced: the value given, or what the query has.
struct Restrictions {
    std::optional<QString> words;
    std::optional<QString> site;
    std::optional<QString> urlExpression;
    [[nodiscard]] bool any() const { return words || site || urlExpression; }
};

struct Options {
    QStringList texts;
    QStringList combined;
    Restrictions restrictions;
    std::optional<QString> folder;
    std::optional<QString> title;
    std::optional<QString> blacklist;
    std::optional<QString> checksums;
    std::optional<QString> highlight;
    QString query;
    QString name;
};

QStringList wordsModes()
{
    return {QStringLiteral("all"), QStringLiteral("phrase"), QStringLiteral("page")};
}

/// The number of a words mode: 1, 2, 3.
qint64 wordsNumber(const QString& name)
{
    return wordsModes().indexOf(name) + 1;
}

bool isBlank(const QString& text)
{
    return text.trimmed().isEmpty();
}

/// "advanced query \"raised bed\" (3F2A91C0)": what was made or changed.
QString described(const QueryCore& node)
{
    const QString what = node.isQueryFolder()              ? QStringLiteral("folder")
                         : node.kind() == QueryKind::Plain ? QStringLiteral("query")
                                                           : kindName(node.kind()) + QStringLiteral(" query");
    return QStringLiteral("%1 \"%2\" (%3)").arg(what, shownTitle(node), shortId(node.UUID()));
}

/// The folder to put a new node into: the root when none was named.
NamedNode targetFolder(const QueryCorePtr& root, const std::optional<QString>& name)
{
    return name ? folderNamed(root, *name) : NamedNode{root, {}};
}

/// An expression that does not compile would end every update of the query without a result.
Outcome faultOfExpression(const Restrictions& restrictions)
{
    if (!restrictions.urlExpression || restrictions.urlExpression->isEmpty())
        return Outcome::done();
    if (const auto fault = expressionFault(*restrictions.urlExpression))
        return Outcome::wrongUse(QStringLiteral("--url: ") + *fault);
    return Outcome::done();
}

QueryCorePtr newQuery(const Options& options)
{
    const Restrictions& with = options.restrictions;
    const qint64 words = wordsNumber(with.words.value_or(QStringLiteral("all")));
    const QString site = with.site.value_or(QString());
    const QString expression = with.urlExpression.value_or(QString());
    if (!options.combined.isEmpty()) {
        QueryCorePtr node = QueryCore::initWithAdvancedCombinedQuery(options.combined, words, site);
        if (node && !expression.isEmpty())
            node->changeWithCombinedQuery(options.combined, words, site, expression);
        return node;
    }
    const QString text = options.texts.join(u' ').trimmed();
    const bool isPlain = words == 1 && site.isEmpty() && expression.isEmpty();
    return isPlain ? QueryCore::initWithQuery(text) : QueryCore::initWithAdvancedQuery(text, words, site, expression);
}

Outcome add(Session& session, const Options& options)
{
    const auto isAnyBlank = [](const QStringList& texts) { return std::any_of(texts.begin(), texts.end(), isBlank); };
    if (!options.texts.isEmpty() && !options.combined.isEmpty())
        return Outcome::wrongUse(QStringLiteral("a query has words, or --combine texts, not both"));
    if (isBlank(options.texts.join(u' ')) && options.combined.isEmpty())
        return Outcome::wrongUse(QStringLiteral("a query needs words"));
    if (isAnyBlank(options.combined))
        return Outcome::wrongUse(QStringLiteral("a --combine text is empty"));
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

/// The next refresh asks the services again, however recent the last one was: a changed definition has older
/// results. The mark that says so lives in memory only, so for another program the date has to say it.
void forgetLastUpdate(const QueryCorePtr& node)
{
    const QueryCore::Snapshot now = node->snapshot();
    [[maybe_unused]] const bool swapped = node->replaceResultsIfUnchanged(
        now.generation, now.fields._currentResult.value_or(ResultList()), Date::reference());
}

void changeDefinition(const QueryCorePtr& node, const Options& options)
{
    const Restrictions& with = options.restrictions;
    const qint64 words = with.words ? wordsNumber(*with.words) : node->wordsRestriction().value_or(1);
    const QString site = with.site.value_or(node->websiteRestriction());
    const QString expression = with.urlExpression.value_or(node->urlRegularExpressions());
    const QString text = options.texts.join(u' ').trimmed();
    if (node->isCombinedQuery())
        node->changeWithCombinedQuery(options.combined.isEmpty() ? node->combinedQueries().value_or(QStringList())
                                                                 : options.combined,
                                      words, site, expression);
    else
        node->changeWithQuery(text.isEmpty() ? node->query() : text, words, site, expression);
    forgetLastUpdate(node);
}

Outcome faultOfEdit(const QueryCorePtr& node, const Options& options)
{
    const bool changesDefinition =
        !options.texts.isEmpty() || !options.combined.isEmpty() || options.restrictions.any();
    if (node->isQueryFolder())
        return Outcome::wrongUse(QStringLiteral("%1 is a folder; only queries are edited").arg(shownTitle(*node)));
    if (!changesDefinition && !options.blacklist && !options.checksums && !options.highlight)
        return Outcome::wrongUse(QStringLiteral("nothing to change was given"));
    if (node->isCombinedQuery() && !options.texts.isEmpty())
        return Outcome::wrongUse(QStringLiteral("%1 is a combined query; give --combine").arg(shownTitle(*node)));
    if (!node->isCombinedQuery() && !options.combined.isEmpty())
        return Outcome::wrongUse(QStringLiteral("%1 is no combined query; give --text").arg(shownTitle(*node)));
    return Outcome::done();
}

Outcome edit(Session& session, const Options& options)
{
    const auto hasBlank = [](const QStringList& texts) { return std::any_of(texts.begin(), texts.end(), isBlank); };
    if (hasBlank(options.texts) || hasBlank(options.combined))
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
        if (!options.texts.isEmpty() || !options.combined.isEmpty() || options.restrictions.any())
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

Command& withRestrictions(Command& command, Restrictions& restrictions)
{
    return command
        .choice(QStringLiteral("--words"), restrictions.words, wordsModes(),
                QStringLiteral("all: any order; phrase: side by side; page: the phrase, looked up in each page"))
        .option(QStringLiteral("--site"), QStringLiteral("HOST"), restrictions.site,
                QStringLiteral("Results of one web site only"))
        .option(QStringLiteral("--url"), QStringLiteral("EXPRESSION"), restrictions.urlExpression,
                QStringLiteral("Results whose address this POSIX extended expression matches"));
}

void addAdd(CommandLine& line, const QString& group)
{
    const auto options = std::make_shared<Options>();
    Command command = line.command(
        group, QStringLiteral("add"), QStringLiteral("Add a query"),
        {QStringLiteral("quarry add sourdough hydration"),
         QStringLiteral("quarry add \"raised bed\" --words phrase --site gardening.example --folder Garden"),
         QStringLiteral("quarry add --combine \"rye starter\" --combine \"wheat starter\" --title Starters")});
    command.optionalArguments(QStringLiteral("words"), options->texts, QStringLiteral("The words to search for"))
        .option(QStringLiteral("--combine"), QStringLiteral("TEXT"), options->combined,
                QStringLiteral("One text of a combined query; give several"))
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
                      QStringLiteral("quarry edit \"raised bed\" --site \"\" --words all"),
                      QStringLiteral("quarry edit Starters --combine \"rye starter\" --combine \"spelt starter\"")});
    command.argument(QStringLiteral("query"), options->query, QStringLiteral("The query"))
        .option(QStringLiteral("--text"), QStringLiteral("WORDS"), options->texts,
                QStringLiteral("The words to search for"))
        .option(QStringLiteral("--combine"), QStringLiteral("TEXT"), options->combined,
                QStringLiteral("One text of a combined query; give all of them"));
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
