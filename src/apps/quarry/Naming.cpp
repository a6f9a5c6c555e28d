#include "apps/quarry/Naming.h"

#include "apps/quarry/Output.h"
#include "exchange/Names.h"

#include <functional>

namespace quarry {

namespace {

constexpr qsizetype ShortestBeginning = 4;
constexpr qsizetype MostCandidatesListed = 10;

bool isBeginningOf(const QString& uuid, const QString& name)
{
    return name.size() >= ShortestBeginning && uuid.startsWith(name, Qt::CaseInsensitive);
}

/// Every node below the root that the test accepts.
QList<QueryCorePtr> nodesThat(const QueryCorePtr& root, const std::function<bool(const QueryCorePtr&)>& accepts)
{
    QList<QueryCorePtr> found;
    walk(root, [&](const QueryCorePtr& node, int) {
        if (node != root && accepts(node))
            found.append(node);
    });
    return found;
}

NamedNode chosen(const QList<QueryCorePtr>& candidates, const QString& name, const QString& what)
{
    if (candidates.size() == 1)
        return {candidates.first(), {}};
    if (candidates.isEmpty())
        return {nullptr, Outcome::failed(QStringLiteral("there is no %1 \"%2\"").arg(what, shown(name)))};
    QString text = QStringLiteral("\"%1\" could be any of these; name it by its ID:").arg(shown(name));
    for (const QueryCorePtr& node : candidates.first(std::min(candidates.size(), MostCandidatesListed)))
        text += QStringLiteral("\n  %1  %2").arg(node->UUID(), shownTitle(*node));
    if (candidates.size() > MostCandidatesListed)
        text += QStringLiteral("\n  and %1 more").arg(candidates.size() - MostCandidatesListed);
    return {nullptr, Outcome::failed(text)};
}

NamedNode find(const QueryCorePtr& root, const QString& name, const QString& what,
               const std::function<bool(const QueryCorePtr&)>& isKind)
{
    if (name.trimmed().isEmpty())
        return {nullptr, Outcome::wrongUse(QStringLiteral("the name of a %1 is empty").arg(what))};
    const auto among = [&](const std::function<bool(const QueryCore&)>& accepts) {
        return nodesThat(root, [&](const QueryCorePtr& node) { return isKind(node) && accepts(*node); });
    };
    const auto whole =
        among([&](const QueryCore& node) { return node.UUID().compare(name, Qt::CaseInsensitive) == 0; });
    if (whole.size() == 1)
        return {whole.first(), {}};
    const auto exact =
        among([&](const QueryCore& node) { return node.title() == name || isBeginningOf(node.UUID(), name); });
    if (!exact.isEmpty())
        return chosen(exact, name, what);
    return chosen(among([&](const QueryCore& node) {
                      return node.title().trimmed().compare(name.trimmed(), Qt::CaseInsensitive) == 0;
                  }),
                  name, what);
}

/// The number that a name is, 0 when it is none; "#3" is one too.
qsizetype numberIn(const QString& name)
{
    bool ok = false;
    const int number = (name.startsWith(u'#') ? name.mid(1) : name).toInt(&ok);
    return ok && number > 0 ? number : 0;
}

bool isRecordNamed(const ResultRecord& record, const QString& name)
{
    return isBeginningOf(record.linkUuid().value_or(QString()), name) || record.urlText() == name;
}

NamedRecords recordNamed(const ResultList& listed, const QString& name)
{
    const qsizetype number = numberIn(name);
    if (number > 0 && number <= listed.size())
        return {{listed.at(number - 1)}, {}};
    ResultList found;
    for (const ResultRecord& record : listed) {
        if (isRecordNamed(record, name))
            found.append(record);
    }
    if (found.isEmpty())
        return {{},
                Outcome::failed(
                    QStringLiteral("there is no result \"%1\" among the %2").arg(shown(name)).arg(listed.size()))};
    if (found.size() > 1)
        return {{},
                Outcome::failed(
                    QStringLiteral("\"%1\" fits %2 results; give more of its ID").arg(shown(name)).arg(found.size()))};
    return {found, {}};
}

} // namespace

QString shownTitle(const QueryCore& node)
{
    const QString title = shown(node.title());
    return title.isEmpty() ? QStringLiteral("(no name)") : title;
}

NamedNode nodeNamed(const QueryCorePtr& root, const QString& name)
{
    return find(root, name, QStringLiteral("query or folder"), [](const QueryCorePtr&) { return true; });
}

NamedNode folderNamed(const QueryCorePtr& root, const QString& name)
{
    return find(root, name, QStringLiteral("folder"), [](const QueryCorePtr& node) { return node->isQueryFolder(); });
}

NamedNode targetFolder(const QueryCorePtr& root, const std::optional<QString>& name)
{
    return name ? folderNamed(root, *name) : NamedNode{root, {}};
}

QString described(const QueryCore& node)
{
    const QString what = node.isQueryFolder()              ? QStringLiteral("folder")
                         : node.kind() == QueryKind::Plain ? QStringLiteral("query")
                                                           : kindName(node.kind()) + QStringLiteral(" query");
    return QStringLiteral("%1 \"%2\" (%3)").arg(what, shownTitle(node), shortId(node.UUID()));
}

NamedNodes nodesNamed(const QueryCorePtr& root, const QStringList& names)
{
    NamedNodes all;
    for (const QString& name : names) {
        const NamedNode named = nodeNamed(root, name);
        if (!named.ok())
            return {{}, named.fault};
        if (!all.nodes.contains(named.node))
            all.nodes.append(named.node);
    }
    return all;
}

NamedRecords recordsNamed(const ResultList& listed, const QStringList& names)
{
    NamedRecords all;
    for (const QString& name : names) {
        NamedRecords one = recordNamed(listed, name);
        if (!one.ok())
            return one;
        if (!all.records.contains(one.records.first()))
            all.records.append(one.records.first());
    }
    return all;
}

} // namespace quarry
