#include "exchange/OpmlReading.h"

#include "exchange/Names.h"
#include "exchange/OpmlText.h"
#include "model/QueryArchive.h"
#include "model/QueryCore.h"

#include <QXmlStreamReader>

namespace quarry {

namespace {

constexpr qsizetype MostBytes = 64 * 1024 * 1024;
constexpr int MostOutlines = 100000;

/// One outline's attributes, and what is wrong with them.
class Outline final {
public:
    explicit Outline(QXmlStreamAttributes attributes) : _attributes(std::move(attributes)) {}

    [[nodiscard]] const QString& fault() const { return _fault; }
    void fail(const QString& fault)
    {
        if (_fault.isEmpty())
            _fault = fault;
    }

    [[nodiscard]] bool has(const char* name) const
    {
        return _attributes.hasAttribute(_namespace, QString(QLatin1String(name)));
    }
    [[nodiscard]] QString plain(const char* name) const { return _attributes.value(QLatin1String(name)).toString(); }

    [[nodiscard]] std::optional<QString> text(const char* name)
    {
        return decoded<QString>(
            name, [](const QString& value) { return opmlUnescaped(value); },
            QStringLiteral("a backslash that begins no escape"));
    }
    [[nodiscard]] std::optional<QStringList> list(const char* name)
    {
        return decoded<QStringList>(
            name, [](const QString& value) { return opmlUnescapedList(value); },
            QStringLiteral("a backslash that begins no escape"));
    }
    [[nodiscard]] std::optional<qint64> words()
    {
        return decoded<qint64>(
            "words", [](const QString& value) { return wordsModeNamed(value); },
            QStringLiteral("no way of matching words"));
    }
    [[nodiscard]] std::optional<QueryKind> kind()
    {
        return decoded<QueryKind>(
            "kind", [](const QString& value) { return kindNamed(value); }, QStringLiteral("no kind of query"));
    }
    [[nodiscard]] bool boolean(const char* name, bool otherwise)
    {
        const auto read = [](const QString& value) -> std::optional<bool> {
            const bool isTrue = value == QLatin1String("true");
            return isTrue || value == QLatin1String("false") ? std::optional(isTrue) : std::nullopt;
        };
        return decoded<bool>(name, read, QStringLiteral("neither \"true\" nor \"false\"")).value_or(otherwise);
    }

private:
    /// None when it is not there, and when it makes no sense, which is a fault.
    template <typename Value, typename Read>
    std::optional<Value> decoded(const char* name, const Read& read, const QString& complaint)
    {
        if (!has(name))
            return std::nullopt;
        const QString value = _attributes.value(_namespace, QLatin1String(name)).toString();
        std::optional<Value> result = read(value);
        if (!result)
            fail(QStringLiteral("quarry:%1=\"%2\" is %3").arg(QLatin1String(name), value.left(60), complaint));
        return result;
    }

    const QString _namespace = QString::fromUtf16(OpmlNamespace);
    QXmlStreamAttributes _attributes;
    QString _fault;
};

void readSearch(Outline& outline, QueryFields& fields)
{
    if (const auto words = outline.words())
        fields._wordsRestriction = words;
    else if (fields._isAdvancedQuery)
        fields._wordsRestriction = 1;
    fields._websiteRestriction = outline.text("site").value_or(QString());
    fields._urlRegularExpression = outline.text("urlExpression").value_or(QString());
    fields._highlightString = outline.text("highlight");
    fields._highlightState = outline.boolean("highlighting", false);
    fields._isSuscribedToBlacklist = outline.boolean("blacklist", true);
    fields._computeCheckSumOfLinks = outline.boolean("checksums", false);
    if (const auto hosts = outline.list("excludedHosts")) {
        fields._excludedDomains.emplace();
        for (const QString& host : *hosts)
            fields._excludedDomains->insert(host, true);
    }
}

/// A new node of that kind, for its defaults.
QueryFields newFields(Outline& outline, QueryKind kind)
{
    if (kind == QueryKind::Folder)
        return QueryCore::initWithQueryFolder(std::nullopt)->snapshot().fields;
    if (kind != QueryKind::Combined)
        return QueryCore::init()->snapshot().fields;
    const QueryCorePtr node =
        QueryCore::initWithAdvancedCombinedQuery(outline.list("combined").value_or(QStringList()), 1, QString());
    if (!node)
        outline.fail(QStringLiteral("a combined query has no texts (quarry:combined)"));
    return node ? node->snapshot().fields : QueryFields();
}

/// An outline written by hand, or by another program: its text is all there is.
void nameByText(QueryFields& fields, QueryKind kind, const QString& text)
{
    if (kind == QueryKind::Combined)
        fields._title = text;
    else
        fields._query = kind == QueryKind::Folder ? text : QString(text).replace(u' ', u'+');
}

QueryFields fieldsOf(Outline& outline, QueryKind kind)
{
    QueryFields fields = newFields(outline, kind);
    fields._isAdvancedQuery = kind == QueryKind::Advanced || kind == QueryKind::Combined;
    const QString shownText = outline.plain("text").simplified();
    const std::optional<QString> query = outline.text("query");
    fields._title = outline.text("title");
    if (query)
        fields._query = query;
    else if (!fields._title && !shownText.isEmpty())
        nameByText(fields, kind, shownText);
    if (const auto id = outline.text("id"))
        fields._uuid = *id;
    fields._queryDisabled = !outline.boolean("enabled", true);
    if (kind != QueryKind::Folder)
        readSearch(outline, fields);
    if (!outline.has("kind") && shownText.isEmpty())
        outline.fail(QStringLiteral("an outline has no text"));
    if (outline.plain("xmlUrl").size() > 0)
        outline.fail(QStringLiteral("\"%1\" is a subscription to a feed, not a search").arg(shownText.left(60)));
    return fields;
}

class OpmlReader final {
public:
    explicit OpmlReader(const QByteArray& bytes) : _xml(bytes) {}

    ImportedForest read()
    {
        ImportedForest forest;
        readDocument(forest.nodes);
        if (_xml.hasError())
            fail(_xml.errorString());
        if (!_hasBody)
            fail(QStringLiteral("there is no <body>"));
        return _fault.isEmpty() ? forest : ImportedForest{{}, _fault};
    }

private:
    void readDocument(std::vector<ImportedNode>& nodes)
    {
        while (_fault.isEmpty() && !_xml.atEnd()) {
            const QXmlStreamReader::TokenType token = _xml.readNext();
            if (token == QXmlStreamReader::DTD)
                fail(QStringLiteral("it declares a document type, which is not read"));
            if (token != QXmlStreamReader::StartElement)
                continue;
            if (isAt("opml"))
                continue;
            if (isAt("body")) {
                _hasBody = true;
                readOutlines(nodes, 0);
            } else {
                _xml.skipCurrentElement();
            }
        }
    }

    /// What the element at hand holds, up to its end.
    void readOutlines(std::vector<ImportedNode>& nodes, int depth)
    {
        if (depth > MaximumTreeDepth)
            fail(QStringLiteral("its folders are nested more than %1 deep").arg(MaximumTreeDepth));
        while (_fault.isEmpty() && _xml.readNextStartElement()) {
            if (isAt("outline"))
                readOutline(nodes, depth);
            else
                _xml.skipCurrentElement();
        }
    }

    void readOutline(std::vector<ImportedNode>& nodes, int depth)
    {
        if (++_outlines > MostOutlines)
            fail(QStringLiteral("it has more than %1 outlines").arg(MostOutlines));
        const qint64 line = _xml.lineNumber();
        Outline outline(_xml.attributes());
        ImportedNode node;
        std::vector<ImportedNode> childs;
        readOutlines(childs, depth + 1);
        const QueryKind kind = outline.kind().value_or(childs.empty() ? QueryKind::Plain : QueryKind::Folder);
        node.fields = fieldsOf(outline, kind);
        if (kind != QueryKind::Folder && !childs.empty())
            outline.fail(QStringLiteral("a query has outlines below it"));
        if (!childs.empty())
            node.childs = std::move(childs);
        if (!outline.fault().isEmpty())
            failAt(line, outline.fault());
        nodes.push_back(std::move(node));
    }

    [[nodiscard]] bool isAt(const char* element) const
    {
        return _xml.name().compare(QLatin1String(element), Qt::CaseInsensitive) == 0;
    }

    void fail(const QString& fault) { failAt(_xml.lineNumber(), fault); }
    void failAt(qint64 line, const QString& fault)
    {
        if (_fault.isEmpty())
            _fault = QStringLiteral("line %1: %2").arg(line).arg(fault);
    }

    QXmlStreamReader _xml;
    QString _fault;
    int _outlines = 0;
    bool _hasBody = false;
};

} // namespace

ImportedForest readOpml(const QByteArray& bytes)
{
    if (bytes.size() > MostBytes)
        return {{}, QStringLiteral("it is larger than %1 MiB").arg(MostBytes / 1024 / 1024)};
    return OpmlReader(bytes).read();
}

} // namespace quarry
