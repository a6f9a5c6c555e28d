#include "exchange/Imports.h"

#include "exchange/ArchiveReading.h"
#include "exchange/OpmlReading.h"
#include "exchange/TreeWalk.h"
#include "model/QueryArchive.h"
#include "text/CSRegex.h"
#include "text/Uuid.h"

#include <QSet>
#include <QUuid>
#include <QXmlStreamReader>

#include <algorithm>

namespace quarry {

namespace {

const char* const NotImported = "it holds results, which come in only with their queries (a qsexport has both)";

/// The name of the root element; empty when there is none.
QString rootElement(const QByteArray& bytes)
{
    QXmlStreamReader xml(bytes);
    return xml.readNextStartElement() ? xml.name().toString().toLower() : QString();
}

ImportedForest fault(const QString& text)
{
    return {{}, text};
}

ImportedForest readXml(const QByteArray& bytes, const QString& name)
{
    const QString root = rootElement(bytes);
    if (root == QLatin1String("plist"))
        return readArchivedNodes(bytes, name);
    if (root == QLatin1String("feed") || root == QLatin1String("rss"))
        return fault(QStringLiteral("it is a feed: ") + QLatin1String(NotImported));
    if (root == QLatin1String("opml") || root.isEmpty())
        return readOpml(bytes); // Without a root, it says where the XML is broken.
    return fault(QStringLiteral("it is XML, but no OPML: it begins with <%1>").arg(root.left(40)));
}

bool isUuid(const QString& text)
{
    return QUuid::fromString(text).toString(QUuid::WithoutBraces).compare(text, Qt::CaseInsensitive) == 0;
}

int heightOf(const std::vector<ImportedNode>& nodes)
{
    int height = 0;
    for (const ImportedNode& node : nodes)
        height = std::max(height, 1 + (node.childs ? heightOf(*node.childs) : 0));
    return height;
}

int depthOf(QueryCorePtr node)
{
    int depth = 0;
    while ((node = node->parent()) && depth <= MaximumTreeDepth)
        ++depth;
    return depth;
}

class Grafter final {
public:
    explicit Grafter(const QueryCorePtr& root)
    {
        walk(root, [this](const QueryCorePtr& node, int) { _taken.insert(node->UUID().toUpper()); });
    }

    QueryCorePtr make(const ImportedNode& imported, const QString& folderPath)
    {
        QueryFields fields = imported.fields;
        const QString stored = fields._uuid;
        if (!isUuid(stored) || _taken.contains(stored.toUpper())) {
            fields._uuid = UUIDString();
            renameRecords(fields._currentResult, stored, fields._uuid);
            renameRecords(fields._hiddenResults, stored, fields._uuid);
            ++_done.renamed;
        }
        _taken.insert(fields._uuid.toUpper());
        fields._keyPath = folderPath + u'.' + fields._uuid;
        count(fields);
        noteFaults(fields);
        const QString path = fields._keyPath;
        QueryCorePtr node = QueryCore::fromArchive(std::move(fields));
        if (imported.childs)
            giveChilds(node, *imported.childs, path);
        return node;
    }

    [[nodiscard]] const Grafting& done() const { return _done; }

private:
    void giveChilds(const QueryCorePtr& node, const std::vector<ImportedNode>& imported, const QString& path)
    {
        QList<QueryCorePtr> childs;
        for (const ImportedNode& each : imported)
            childs.append(make(each, path));
        node->setChildsFromArchive(childs);
        for (const QueryCorePtr& child : childs)
            child->setParent(node);
    }

    static void renameRecords(std::optional<ResultList>& records, const QString& oldQuery, const QString& newQuery)
    {
        if (!records)
            return;
        for (ResultRecord& record : *records) {
            if (record.parentQueryUuid() == oldQuery)
                record = record.withParentQueryUuid(newQuery);
            if (record.linkUuid())
                record = record.withLinkUuid(UUIDString());
        }
    }

    void count(const QueryFields& fields)
    {
        ++(fields._isFolder ? _done.folders : _done.queries);
        _done.results += fields._currentResult ? fields._currentResult->size() : 0;
        _done.results += fields._hiddenResults ? fields._hiddenResults->size() : 0;
    }

    void noteFaults(const QueryFields& fields)
    {
        const QString expression = fields._urlRegularExpression.value_or(QString());
        if (expression.isEmpty() || !fields._isAdvancedQuery)
            return;
        try {
            const CSRegex compiles(expression);
        } catch (const CSRegexException& exception) {
            const QString name = fields._title.value_or(fields._query.value_or(QString()).replace(u'+', u' '));
            _done.notes.append(QStringLiteral("the URL expression of \"%1\" is not valid: %2; until it is changed, the "
                                              "query finds nothing")
                                   .arg(name.trimmed(), exception.reason()));
        }
    }

    QSet<QString> _taken;
    Grafting _done;
};

} // namespace

ImportedForest readImport(const QByteArray& bytes, const QString& name)
{
    if (bytes.startsWith("bplist"))
        return readArchivedNodes(bytes, name);
    const QByteArray start = bytes.left(1024).trimmed();
    if (start.isEmpty())
        return fault(QStringLiteral("it is empty"));
    if (start.startsWith('{') || start.startsWith('['))
        return fault(QStringLiteral("it is JSON: ") + QLatin1String(NotImported));
    if (start.startsWith("query,queryTitle,"))
        return fault(QStringLiteral("it is CSV: ") + QLatin1String(NotImported));
    if (start.startsWith('<') || start.startsWith("\xef\xbb\xbf<") || start.startsWith("\xff\xfe") ||
        start.startsWith("\xfe\xff"))
        return readXml(bytes, name);
    return fault(QStringLiteral("it is neither a qsexport nor OPML"));
}

Grafting graft(const ImportedForest& forest, const QueryCorePtr& root, const QueryCorePtr& folder)
{
    if (depthOf(folder) + heightOf(forest.nodes) > MaximumTreeDepth) {
        Grafting refused;
        refused.fault = QStringLiteral("its folders would be nested more than %1 deep there").arg(MaximumTreeDepth);
        return refused;
    }
    Grafter grafter(root);
    const QString path = folder->keyPath().isEmpty() ? folder->UUID() : folder->keyPath();
    QList<QueryCorePtr> nodes;
    for (const ImportedNode& node : forest.nodes)
        nodes.append(grafter.make(node, path));
    for (const QueryCorePtr& node : nodes)
        folder->addChild(node);
    return grafter.done();
}

} // namespace quarry
