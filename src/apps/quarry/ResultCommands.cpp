#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"
#include "exchange/JsonShapes.h"
#include "exchange/Names.h"
#include "model/ResultComparator.h"
#include "model/ResultSearch.h"

#include <QHash>
#include <QJsonArray>

#include <array>

namespace quarry {

namespace {

constexpr qsizetype LongestText = 160;

struct Options {
    std::optional<QString> query;
    std::optional<QString> sort;
    std::optional<QString> search;
    std::optional<qint64> limit;
    bool unread = false;
    bool fresh = false;
    bool hidden = false;
    bool brief = false;
    bool json = false;
};

/// One result with the query it belongs to and its number there.
struct Listed {
    ResultRecord record;
    QueryCorePtr query;
    qsizetype number = 0;
};

struct NamedOrder {
    const char16_t* name;
    ResultOrder order;
};
constexpr std::array Orders = {NamedOrder{u"rank", ByRank},        NamedOrder{u"newest", NewestFirst},
                               NamedOrder{u"oldest", OldestFirst}, NamedOrder{u"unread", UnreadFirst},
                               NamedOrder{u"address", ByAddress},  NamedOrder{u"title", ByTitle},
                               NamedOrder{u"rating", ByRating}};

QStringList orderNames()
{
    QStringList names;
    for (const NamedOrder& order : Orders)
        names.append(QString::fromUtf16(order.name));
    return names;
}

ResultOrder orderNamed(const QString& name)
{
    for (const NamedOrder& order : Orders) {
        if (name == QString::fromUtf16(order.name))
            return order.order;
    }
    return ByRank;
}

/// Every result of the query, numbered in the order of rank; the hidden ones in that of their addresses.
QList<Listed> listedOf(const QueryCorePtr& query, bool hidden)
{
    QList<Listed> all;
    const ResultList records =
        hidden ? query->hiddenResults().value_or(ResultList()) : query->resultsSortedBy(ByRank).value_or(ResultList());
    for (const ResultRecord& record : records)
        all.append({record, query, all.size() + 1});
    return all;
}

/// In the order asked for. The model sorts lists of records; each comes back with its query by the block of memory
/// that its copies share.
QList<Listed> sorted(const QList<Listed>& listed, ResultOrder order)
{
    ResultList records;
    QHash<const RecordData*, QList<qsizetype>> places;
    for (qsizetype i = 0; i < listed.size(); ++i) {
        records.append(listed.at(i).record);
        places[&listed.at(i).record.data()].append(i);
    }
    sortResults(records, order);
    QList<Listed> out;
    for (const ResultRecord& record : records)
        out.append(listed.at(places[&record.data()].takeFirst()));
    return out;
}

QString marksOf(const ResultRecord& record)
{
    QStringList marks;
    if (record.newSincePrevious().value_or(false))
        marks.append(QStringLiteral("new"));
    if (record.rating().value_or(0) > 0)
        marks.append(QStringLiteral("rated %1").arg(*record.rating()));
    return marks.join(QLatin1String(", "));
}

QString detailsOf(const Listed& item, bool withQuery)
{
    const ResultRecord& record = item.record;
    QStringList parts = {shortId(record.linkUuid().value_or(QStringLiteral("(no ID)"))),
                         shown(engineName(record.engineId().value_or(QString()))),
                         QStringLiteral("found ") + shownTime(record.dateOfFind()), marksOf(record)};
    if (withQuery)
        parts.append(QStringLiteral("in \"%1\"").arg(shownTitle(*item.query)));
    parts.removeAll(QString());
    return parts.join(QLatin1String("  "));
}

QString textOf(const Listed& item, const Options& options, bool withQuery)
{
    const ResultRecord& record = item.record;
    const QString title = shown(record.title().value_or(QString()));
    const QString name = title.isEmpty() ? QStringLiteral("(no title)") : title;
    QString text = QStringLiteral("%1 %2 %3\n")
                       .arg(withQuery ? QString() : QString::number(item.number), 4)
                       .arg(QLatin1Char(record.isRead() ? ' ' : '*'))
                       .arg(record.isRead() ? name : strong(name));
    if (options.brief)
        return text;
    const QString indent(7, u' ');
    for (const QString& line : {shown(record.urlText().value_or(QString())),
                                shownWithin(record.textFromPage().value_or(QString()), LongestText)}) {
        if (!line.isEmpty())
            text += indent + line + u'\n';
    }
    return text + indent + faint(detailsOf(item, withQuery)) + u'\n';
}

QString summaryOf(const QList<Listed>& listed, qsizetype all, const Options& options)
{
    const QString noun = options.hidden ? QStringLiteral("hidden result") : QStringLiteral("result");
    if (listed.size() == all)
        return counted(all, noun);
    return QStringLiteral("%1 of %2").arg(listed.size()).arg(counted(all, noun));
}

bool isWanted(const Listed& item, const Options& options, const std::optional<ResultSearch>& search)
{
    return !(options.unread && item.record.isRead()) &&
           !(options.fresh && !item.record.newSincePrevious().value_or(false)) &&
           !(search && !search->matches(item.record));
}

Outcome results(Session& session, const Options& options)
{
    const Session::Loaded tree = session.load();
    if (!tree.ok())
        return tree.fault;
    const NamedNode named = options.query ? nodeNamed(tree.root, *options.query) : NamedNode{tree.root, {}};
    if (!named.ok())
        return named.fault;

    QList<Listed> all;
    for (const QueryCorePtr& query : queriesBelow(named.node))
        all.append(listedOf(query, options.hidden));
    const std::optional<ResultSearch> search =
        options.search && !options.search->isEmpty() ? std::optional(ResultSearch(*options.search)) : std::nullopt;
    QList<Listed> listed;
    for (const Listed& item : all) {
        if (isWanted(item, options, search))
            listed.append(item);
    }
    if (options.sort || !named.node->isLeaf())
        listed = sorted(listed, orderNamed(options.sort.value_or(QStringLiteral("rank"))));
    if (options.limit)
        listed = listed.first(std::min(listed.size(), qsizetype(*options.limit)));

    if (options.json) {
        QJsonArray array;
        for (const Listed& item : listed)
            array.append(jsonOfRecord(item.record, item.query, item.number));
        return Outcome::done(jsonText({{QStringLiteral("results"), array}}));
    }
    QString text;
    for (const Listed& item : listed)
        text += textOf(item, options, !named.node->isLeaf());
    return Outcome::done(text + summaryOf(listed, all.size(), options));
}

} // namespace

void addResultCommands(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    line.command(QStringLiteral("Looking"), QStringLiteral("results"),
                 QStringLiteral("The results of a query, of a folder, or of all queries"),
                 {QStringLiteral("quarry results \"sourdough hydration\" --unread"),
                  QStringLiteral("quarry results Kitchen --new --sort newest --limit 10"),
                  QStringLiteral("quarry results --search crumb --brief"), QString(),
                  QStringLiteral("Numbers count a query's results in the order of rank, whatever is shown; other"),
                  QStringLiteral("commands take them. A refresh may change numbers; IDs never change.")})
        .optionalArgument(QStringLiteral("query"), options->query, QStringLiteral("The query or folder; all without"))
        .choice(QStringLiteral("--sort"), options->sort, orderNames(), QStringLiteral("The order; rank without"))
        .flag(QStringLiteral("--unread"), options->unread, QStringLiteral("Only unread ones"))
        .flag(QStringLiteral("--new"), options->fresh, QStringLiteral("Only those that the latest refresh brought"))
        .option(QStringLiteral("--search"), QStringLiteral("TEXT"), options->search,
                QStringLiteral("Only those with this text in title, text or address"))
        .flag(QStringLiteral("--hidden"), options->hidden, QStringLiteral("The hidden ones instead"))
        .number(QStringLiteral("--limit"), QStringLiteral("N"), options->limit, 0, 1000000000,
                QStringLiteral("At most so many"))
        .flag(QStringLiteral("--brief"), options->brief, QStringLiteral("One line a result"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return results(session, *options); });
}

} // namespace quarry
