#include "exchange/JsonShapes.h"

#include "exchange/JsonText.h"
#include "exchange/Names.h"
#include "exchange/TreeWalk.h"

#include <QJsonArray>

namespace quarry {

namespace {

QJsonValue orNull(const std::optional<QString>& text)
{
    return text ? QJsonValue(*text) : QJsonValue(QJsonValue::Null);
}

QJsonValue orNull(const std::optional<qint64>& number)
{
    return number ? QJsonValue(*number) : QJsonValue(QJsonValue::Null);
}

/// What list and show have in common.
QJsonObject jsonOfNodeAlone(const QueryCorePtr& node)
{
    const NodeCounts counts = countsOf(node);
    return {
        {QStringLiteral("id"), node->UUID()},
        {QStringLiteral("kind"), kindName(node->kind())},
        {QStringLiteral("title"), node->title()},
        {QStringLiteral("query"), node->query()},
        {QStringLiteral("enabled"), node->isEnabled()},
        {QStringLiteral("unread"), counts.unread},
        {QStringLiteral("results"), counts.results},
        {QStringLiteral("hidden"), counts.hidden},
        {QStringLiteral("lastUpdate"), jsonTime(node->date())},
    };
}

} // namespace

QJsonObject jsonOfNode(const QueryCorePtr& node)
{
    QJsonObject object = jsonOfNodeAlone(node);
    if (node->isQueryFolder()) {
        QJsonArray children;
        for (const QueryCorePtr& child : node->childs().value_or(QList<QueryCorePtr>()))
            children.append(jsonOfNode(child));
        object.insert(QStringLiteral("children"), children);
    }
    return object;
}

QJsonObject jsonOfDefinition(const QueryCorePtr& node)
{
    QJsonObject object = jsonOfNodeAlone(node);
    const QueryCorePtr parent = node->parent();
    const bool isTopLevel = !parent || parent->keyPath().isEmpty();
    object.insert(QStringLiteral("folder"), isTopLevel ? QJsonValue(QJsonValue::Null) : QJsonValue(parent->UUID()));
    if (node->isQueryFolder())
        return object;
    object.insert(QStringLiteral("words"), wordsModeName(node->wordsRestriction().value_or(1)));
    object.insert(QStringLiteral("site"), node->websiteRestriction());
    object.insert(QStringLiteral("urlExpression"), node->urlRegularExpressions());
    object.insert(QStringLiteral("combined"),
                  QJsonArray::fromStringList(node->combinedQueries().value_or(QStringList())));
    object.insert(QStringLiteral("highlight"), node->highlight());
    object.insert(QStringLiteral("highlighting"), node->isHighlightActive());
    object.insert(QStringLiteral("blacklist"), node->isCheckingBlacklist());
    object.insert(QStringLiteral("checksums"), node->isComputingChecksum());
    object.insert(QStringLiteral("excludedHosts"), QJsonArray::fromStringList(node->excludedHosts()));
    return object;
}

QJsonObject jsonOfRecord(const ResultRecord& record, const QueryCorePtr& query, qsizetype number)
{
    return {
        {QStringLiteral("number"), number > 0 ? QJsonValue(qint64(number)) : QJsonValue(QJsonValue::Null)},
        {QStringLiteral("id"), orNull(record.linkUuid())},
        {QStringLiteral("query"), query->UUID()},
        {QStringLiteral("queryTitle"), query->title()},
        {QStringLiteral("title"), record.title().value_or(QString())},
        {QStringLiteral("url"), record.urlText().value_or(QString())},
        {QStringLiteral("text"), record.textFromPage().value_or(QString())},
        {QStringLiteral("read"), record.isRead()},
        {QStringLiteral("new"), record.newSincePrevious().value_or(false)},
        {QStringLiteral("found"), jsonTime(record.dateOfFind())},
        {QStringLiteral("rank"), orNull(record.rank())},
        {QStringLiteral("rating"), orNull(record.rating())},
        {QStringLiteral("service"), engineName(record.engineId().value_or(QString()))},
    };
}

} // namespace quarry
