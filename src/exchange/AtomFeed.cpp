#include "exchange/AtomFeed.h"

#include "exchange/PlainText.h"
#include "exchange/ResultsExport.h"
#include "exchange/SinkDevice.h"
#include "exchange/TreeWalk.h"

#include <QSet>
#include <QUuid>
#include <QXmlStreamWriter>

#include <algorithm>

namespace quarry {

namespace {

const QString AtomNamespace = QStringLiteral("http://www.w3.org/2005/Atom");

struct Entry {
    ExportedResult result;
    QString updated; ///< As text: any number can be stored as a date, none at all included, and texts compare.
    QString id;
};

QString urnOf(const QUuid& uuid)
{
    return QStringLiteral("urn:uuid:") + uuid.toString(QUuid::WithoutBraces);
}

/// An identity that is the same whenever the same texts come.
QUuid derivedUuid(const QString& query, const QString& text)
{
    return QUuid::createUuidV5(QUuid::createUuidV5(QUuid(), query), text);
}

QString feedId(const QueryCore& node)
{
    const QUuid uuid = QUuid::fromString(node.UUID());
    return urnOf(uuid.isNull() ? derivedUuid(node.UUID(), QString()) : uuid);
}

/// A record that has no identity of its own gets one from its address.
QString entryId(const ExportedResult& result)
{
    const QUuid uuid = QUuid::fromString(result.record.linkUuid().value_or(QString()));
    return urnOf(uuid.isNull() ? derivedUuid(result.query->UUID(), result.record.urlText().value_or(QString())) : uuid);
}

/// No two entries of a feed may be the same one, whatever the file says.
QString distinctId(const ExportedResult& result, QSet<QString>& taken)
{
    QString id = entryId(result);
    for (int copy = 1; taken.contains(id); ++copy)
        id = urnOf(derivedUuid(result.query->UUID() + id, QString::number(copy)));
    taken.insert(id);
    return id;
}

QList<Entry> entriesOf(const QueryCorePtr& node, ExportedResults which)
{
    QList<Entry> entries;
    QSet<QString> taken;
    for (const ExportedResult& result : resultsBelow(node, which)) {
        if (!result.isNew() && result.record.isRead())
            continue;
        const Date found = result.record.dateOfFind().value_or(Date::reference());
        entries.append({result, found.isoText(), distinctId(result, taken)});
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.updated > b.updated; });
    return entries;
}

/// When the feed last changed: with its newest entry, or with the latest refresh if that is later.
QString updatedText(const QueryCorePtr& node, const QList<Entry>& entries)
{
    QString latest = entries.isEmpty() ? Date::reference().isoText() : entries.first().updated;
    for (const QueryCorePtr& query : queriesBelow(node))
        latest = std::max(latest, query->date().value_or(Date::reference()).isoText());
    return latest;
}

/// The address to follow; none for what is no page of the web.
QString linkOf(const ResultRecord& record)
{
    const std::optional<Url> url = Url::fromText(record.urlText().value_or(QString()));
    const bool isWeb = url && !url->host().isEmpty() &&
                       (url->scheme().compare(u"http", Qt::CaseInsensitive) == 0 ||
                        url->scheme().compare(u"https", Qt::CaseInsensitive) == 0);
    return isWeb ? url->absoluteString() : QString();
}

QString titleOf(const ResultRecord& record)
{
    const QString title = plainText(record.title().value_or(QString())).simplified();
    const QString address = plainText(record.urlText().value_or(QString()));
    return !title.isEmpty() ? title : !address.isEmpty() ? address : QStringLiteral("(no title)");
}

void writeText(QXmlStreamWriter& xml, const QString& element, const QString& text)
{
    xml.writeStartElement(AtomNamespace, element);
    xml.writeAttribute(QStringLiteral("type"), QStringLiteral("text"));
    xml.writeCharacters(plainText(text));
    xml.writeEndElement();
}

void writeEntry(QXmlStreamWriter& xml, const Entry& entry)
{
    const ResultRecord& record = entry.result.record;
    const QString link = linkOf(record);
    const QString text = record.textFromPage().value_or(QString());
    const QString query = plainText(entry.result.query->title()).simplified();
    xml.writeStartElement(AtomNamespace, QStringLiteral("entry"));
    xml.writeTextElement(AtomNamespace, QStringLiteral("id"), entry.id);
    writeText(xml, QStringLiteral("title"), titleOf(record));
    xml.writeTextElement(AtomNamespace, QStringLiteral("published"), entry.updated);
    xml.writeTextElement(AtomNamespace, QStringLiteral("updated"), entry.updated);
    if (!link.isEmpty()) {
        xml.writeEmptyElement(AtomNamespace, QStringLiteral("link"));
        xml.writeAttribute(QStringLiteral("rel"), QStringLiteral("alternate"));
        xml.writeAttribute(QStringLiteral("href"), link);
    }
    if (!query.isEmpty()) {
        xml.writeEmptyElement(AtomNamespace, QStringLiteral("category"));
        xml.writeAttribute(QStringLiteral("term"), query);
    }
    // An entry without a link has to have content.
    if (link.isEmpty())
        writeText(xml, QStringLiteral("content"), text);
    else if (!text.isEmpty())
        writeText(xml, QStringLiteral("summary"), text);
    xml.writeEndElement();
}

} // namespace

bool writeAtomFeed(const QueryCorePtr& node, ExportedResults which, ByteSink& sink)
{
    const QList<Entry> entries = entriesOf(node, which);
    const QString title = node->title();
    SinkDevice device(sink);
    QXmlStreamWriter xml(&device);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeDefaultNamespace(AtomNamespace);
    xml.writeStartElement(AtomNamespace, QStringLiteral("feed"));
    xml.writeTextElement(AtomNamespace, QStringLiteral("id"), feedId(*node));
    writeText(xml, QStringLiteral("title"), title.isEmpty() ? QStringLiteral("QuarrySpotter") : title);
    xml.writeTextElement(AtomNamespace, QStringLiteral("updated"), updatedText(node, entries));
    xml.writeStartElement(AtomNamespace, QStringLiteral("author"));
    xml.writeTextElement(AtomNamespace, QStringLiteral("name"), QStringLiteral("QuarrySpotter"));
    xml.writeEndElement();
    for (const Entry& entry : entries) {
        if (!device.isFine())
            return false;
        writeEntry(xml, entry);
    }
    xml.writeEndDocument();
    return device.isFine();
}

} // namespace quarry
