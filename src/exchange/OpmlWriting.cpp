#include "exchange/OpmlWriting.h"

#include "exchange/Names.h"
#include "exchange/OpmlText.h"
#include "exchange/PlainText.h"
#include "exchange/SinkDevice.h"

#include <QXmlStreamWriter>

namespace quarry {

namespace {

class OpmlWriter final {
public:
    explicit OpmlWriter(ByteSink& sink) : _device(sink), _xml(&_device) { _xml.setAutoFormatting(true); }

    bool write(const QueryCorePtr& top)
    {
        const QString title = plainText(top->title());
        _xml.writeStartDocument();
        _xml.writeStartElement(QStringLiteral("opml"));
        _xml.writeAttribute(QStringLiteral("version"), QStringLiteral("2.0"));
        _xml.writeNamespace(_namespace, QStringLiteral("quarry"));
        _xml.writeStartElement(QStringLiteral("head"));
        _xml.writeTextElement(QStringLiteral("title"), title.isEmpty() ? QStringLiteral("QuarrySpotter") : title);
        _xml.writeEndElement();
        _xml.writeStartElement(QStringLiteral("body"));
        if (top->isQueryFolder() && !top->parent())
            writeChilds(top);
        else
            writeOutline(top);
        _xml.writeEndDocument();
        return _device.isFine();
    }

private:
    void writeChilds(const QueryCorePtr& folder)
    {
        for (const QueryCorePtr& child : folder->childs().value_or(QList<QueryCorePtr>()))
            writeOutline(child);
    }

    void writeOutline(const QueryCorePtr& node)
    {
        if (!_device.isFine())
            return;
        _xml.writeStartElement(QStringLiteral("outline"));
        _xml.writeAttribute(QStringLiteral("text"), plainText(node->title()).trimmed());
        writeDefinition(node->kind(), node->snapshot().fields);
        if (node->isQueryFolder())
            writeChilds(node);
        _xml.writeEndElement();
    }

    void writeDefinition(QueryKind kind, const QueryFields& fields)
    {
        put("kind", kindName(kind));
        put("id", fields._uuid);
        put("title", fields._title);
        put("query", fields._query);
        if (fields._queryDisabled)
            put("enabled", false);
        if (kind != QueryKind::Folder)
            writeSearch(kind, fields);
    }

    void writeSearch(QueryKind kind, const QueryFields& fields)
    {
        const qint64 words = fields._wordsRestriction.value_or(0);
        if (kind != QueryKind::Plain || words != 0)
            put("words", wordsModeName(words));
        putUnlessEmpty("site", fields._websiteRestriction);
        putUnlessEmpty("urlExpression", fields._urlRegularExpression);
        if (kind == QueryKind::Combined)
            putList("combined", *fields._combinedQueryList);
        put("highlight", fields._highlightString);
        if (fields._highlightState)
            put("highlighting", true);
        put("blacklist", fields._isSuscribedToBlacklist);
        put("checksums", fields._computeCheckSumOfLinks);
        putList("excludedHosts", fields._excludedDomains.value_or(QMap<QString, bool>()).keys());
    }

    void put(const char* name, const std::optional<QString>& text)
    {
        if (text)
            _xml.writeAttribute(_namespace, QLatin1String(name), opmlEscaped(*text));
    }
    void put(const char* name, bool value)
    {
        _xml.writeAttribute(_namespace, QLatin1String(name), value ? QStringLiteral("true") : QStringLiteral("false"));
    }
    void putUnlessEmpty(const char* name, const std::optional<QString>& text)
    {
        if (text && !text->isEmpty())
            put(name, text);
    }
    void putList(const char* name, const QStringList& texts)
    {
        _xml.writeAttribute(_namespace, QLatin1String(name), opmlEscapedList(texts));
    }

    const QString _namespace = QString::fromUtf16(OpmlNamespace);
    SinkDevice _device;
    QXmlStreamWriter _xml;
};

} // namespace

bool writeOpml(const QueryCorePtr& node, ByteSink& sink)
{
    return OpmlWriter(sink).write(node);
}

} // namespace quarry
