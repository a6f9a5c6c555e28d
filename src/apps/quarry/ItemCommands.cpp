#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"
#include "model/ResultComparator.h"
#include "text/Url.h"

namespace quarry {

namespace {

struct Options {
    QString query;
    std::optional<QString> queryOrAll;
    QStringList items;
    std::optional<qint64> rating;
    bool all = false;
    bool remove = false;
};

/// A query by name: results belong to queries, not to folders.
NamedNode queryNamed(const QueryCorePtr& root, const QString& name)
{
    NamedNode named = nodeNamed(root, name);
    if (named.ok() && named.node->isQueryFolder())
        return {nullptr, Outcome::wrongUse(
                             QStringLiteral("%1 is a folder; name one of its queries").arg(shownTitle(*named.node)))};
    return named;
}

/// The results as `quarry results` numbers them.
ResultList numberedResults(const QueryCorePtr& query)
{
    return query->resultsSortedBy(ByRank).value_or(ResultList());
}

using Apply = std::function<void(const QueryCorePtr& query, const ResultRecord& record)>;

/// Does something to each result named, in one edit.
Outcome applyTo(Session& session, const Options& options, bool hidden, const Apply& apply, const QString& verb)
{
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNode named = queryNamed(root, options.query);
        if (!named.ok())
            return named.fault;
        const NamedRecords items = recordsNamed(
            hidden ? named.node->hiddenResults().value_or(ResultList()) : numberedResults(named.node), options.items);
        if (!items.ok())
            return items.fault;
        for (const ResultRecord& record : items.records)
            apply(named.node, record);
        return Outcome::done(
            QStringLiteral("%1 %2 of \"%3\"")
                .arg(verb, counted(items.records.size(), QStringLiteral("result")), shownTitle(*named.node)));
    });
}

/// Marks what is not marked so already. The model counts every call, whatever the record said before.
qint64 mark(const QueryCorePtr& query, const ResultList& records, bool read)
{
    qint64 changed = 0;
    for (const ResultRecord& record : records) {
        if (record.isRead() == read)
            continue;
        if (read)
            query->markItemAsRead(record);
        else
            query->markItemAsUnread(record);
        ++changed;
    }
    return changed;
}

Outcome markEverything(const QueryCorePtr& top, bool read)
{
    qint64 changed = 0;
    for (const QueryCorePtr& query : queriesBelow(top))
        changed += mark(query, numberedResults(query), read);
    return Outcome::done(
        QStringLiteral("Marked %1 as %2")
            .arg(counted(changed, QStringLiteral("result")), read ? QStringLiteral("read") : QStringLiteral("unread")));
}

Outcome markCommand(Session& session, const Options& options, bool read)
{
    if (!options.all && (!options.queryOrAll || options.items.isEmpty()))
        return Outcome::wrongUse(QStringLiteral("name a query and its results, or give --all"));
    if (options.all && !options.items.isEmpty())
        return Outcome::wrongUse(QStringLiteral("give results or --all, not both"));
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNode named = options.queryOrAll ? nodeNamed(root, *options.queryOrAll) : NamedNode{root, {}};
        if (!named.ok())
            return named.fault;
        if (options.all)
            return markEverything(named.node, read);
        const NamedNode query = queryNamed(root, *options.queryOrAll);
        if (!query.ok())
            return query.fault;
        const NamedRecords items = recordsNamed(numberedResults(query.node), options.items);
        if (!items.ok())
            return items.fault;
        const qint64 changed = mark(query.node, items.records, read);
        return Outcome::done(QStringLiteral("Marked %1 of \"%2\" as %3")
                                 .arg(counted(changed, QStringLiteral("result")), shownTitle(*query.node),
                                      read ? QStringLiteral("read") : QStringLiteral("unread")));
    });
}

Outcome rate(Session& session, const Options& options)
{
    if (!options.rating)
        return Outcome::wrongUse(QStringLiteral("--stars is missing"));
    const qint64 rating = *options.rating;
    return applyTo(
        session, options, false,
        [rating](const QueryCorePtr& query, const ResultRecord& record) {
            [[maybe_unused]] const auto changed = query->setRating(rating, record);
        },
        rating == 0 ? QStringLiteral("Cleared the rating of") : QStringLiteral("Rated %1:").arg(rating));
}

/// The host that a person means: of a result, of an address, or a bare host name; empty when it is none.
QString hostNamed(const ResultList& listed, const QString& name)
{
    const NamedRecords record = recordsNamed(listed, {name});
    if (record.ok())
        return record.records.first().url().value_or(Url()).host().toString();
    const std::optional<Url> url =
        Url::fromText(name.contains(QLatin1String("://")) ? name : QStringLiteral("http://") + name);
    return url ? url->host().toString() : QString();
}

QString excludeHost(const QueryCorePtr& query, const QString& host)
{
    const qsizetype before = numberedResults(query).size();
    query->excludeURLString(QStringLiteral("http://") + host);
    return QStringLiteral("Excluded %1 from \"%2\": %3 removed")
        .arg(shown(host), shownTitle(*query),
             counted(before - numberedResults(query).size(), QStringLiteral("result")));
}

QString includeHost(const QueryCorePtr& query, const QString& host)
{
    query->includeHost(host);
    return QStringLiteral("No longer excluded from \"%1\": %2").arg(shownTitle(*query), shown(host));
}

Outcome exclude(Session& session, const Options& options)
{
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNode named = queryNamed(root, options.query);
        if (!named.ok())
            return named.fault;
        const QueryCorePtr& query = named.node;
        QStringList hosts;
        for (const QString& name : options.items) {
            hosts.append(options.remove ? name : hostNamed(numberedResults(query), name));
            if (hosts.last().isEmpty())
                return Outcome::failed(QStringLiteral("\"%1\" is neither a host nor a result").arg(shown(name)));
            if (options.remove && !query->excludedHosts().contains(name))
                return Outcome::failed(QStringLiteral("%1 is not excluded").arg(shown(name)));
        }
        QStringList lines;
        for (const QString& host : hosts)
            lines.append(options.remove ? includeHost(query, host) : excludeHost(query, host));
        return Outcome::done(lines.join(u'\n'));
    });
}

const QString itemsHelp = QStringLiteral("Results: numbers as quarry results shows them, IDs, or addresses");

void addMarking(CommandLine& line, const QString& group, const QString& name, bool read)
{
    const auto options = std::make_shared<Options>();
    line.command(group, name, QStringLiteral("Mark results as %1").arg(name),
                 {QStringLiteral("quarry %1 \"sourdough hydration\" 1 2 5").arg(name),
                  QStringLiteral("quarry %1 Kitchen --all").arg(name), QStringLiteral("quarry %1 --all").arg(name)})
        .optionalArgument(QStringLiteral("query"), options->queryOrAll,
                          QStringLiteral("The query; with --all also a folder, or nothing for everything"))
        .optionalArguments(QStringLiteral("items"), options->items, itemsHelp)
        .flag(QStringLiteral("--all"), options->all, QStringLiteral("All results"))
        .action([options, read](Session& session) { return markCommand(session, *options, read); });
}

void addHiding(CommandLine& line, const QString& group, const QString& name, bool hidden)
{
    const auto options = std::make_shared<Options>();
    line.command(group, name,
                 hidden ? QStringLiteral("Hide results; they are not found again")
                        : QStringLiteral("Show hidden results again"),
                 {QStringLiteral("quarry %1 \"sourdough hydration\" 3").arg(name)})
        .argument(QStringLiteral("query"), options->query, QStringLiteral("The query"))
        .arguments(QStringLiteral("items"), options->items,
                   hidden ? itemsHelp
                          : QStringLiteral("Hidden results: numbers as quarry results --hidden shows them, IDs, or "
                                           "addresses"))
        .action([options, hidden](Session& session) {
            return applyTo(
                session, *options, !hidden,
                [hidden](const QueryCorePtr& query, const ResultRecord& record) { query->setHidden(hidden, record); },
                hidden ? QStringLiteral("Hid") : QStringLiteral("Shows again"));
        });
}

} // namespace

void addItemCommands(CommandLine& line)
{
    const QString group = QStringLiteral("Results");
    addMarking(line, group, QStringLiteral("read"), true);
    addMarking(line, group, QStringLiteral("unread"), false);
    addHiding(line, group, QStringLiteral("hide"), true);
    addHiding(line, group, QStringLiteral("unhide"), false);
    const auto options = std::make_shared<Options>();
    line.command(group, QStringLiteral("rate"), QStringLiteral("Rate results; rated ones do not expire"),
                 {QStringLiteral("quarry rate \"sourdough hydration\" 3 --stars 5"),
                  QStringLiteral("quarry rate \"sourdough hydration\" 3 --stars 0      # no rating")})
        .argument(QStringLiteral("query"), options->query, QStringLiteral("The query"))
        .arguments(QStringLiteral("items"), options->items, itemsHelp)
        .number(QStringLiteral("--stars"), QStringLiteral("N"), options->rating, 0, 5,
                QStringLiteral("1 to 5, or 0 to clear"))
        .action([options](Session& session) { return rate(session, *options); });
    line.command(group, QStringLiteral("exclude"), QStringLiteral("Drop everything from a web site, now and later"),
                 {QStringLiteral("quarry exclude \"sourdough hydration\" shop.example"),
                  QStringLiteral("quarry exclude \"sourdough hydration\" 4        # the host of result 4"),
                  QStringLiteral("quarry exclude \"sourdough hydration\" shop.example --undo")})
        .argument(QStringLiteral("query"), options->query, QStringLiteral("The query"))
        .arguments(QStringLiteral("hosts"), options->items, QStringLiteral("Host names, or results of such hosts"))
        .flag(QStringLiteral("--undo"), options->remove,
              QStringLiteral("Exclude the host no longer; its results come back with a later refresh"))
        .action([options](Session& session) { return exclude(session, *options); });
}

} // namespace quarry
