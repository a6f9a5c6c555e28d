#include "exchange/ResultsExport.h"

#include "exchange/JsonShapes.h"
#include "exchange/JsonText.h"
#include "exchange/PlainText.h"
#include "exchange/TreeWalk.h"
#include "model/ResultComparator.h"

#include <array>

namespace quarry {

namespace {

bool put(ByteSink& sink, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    return sink.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

/// The columns, named as in JSON.
constexpr std::array CsvColumns = {u"query", u"queryTitle", u"number", u"id",   u"title",  u"url",    u"text",
                                   u"read",  u"new",        u"found",  u"rank", u"rating", u"service"};

/// What a spreadsheet takes for the beginning of a formula.
bool beginsFormula(const QString& text)
{
    static const QString starts = QStringLiteral("=+-@\t\r\n\uff1d\uff0b\uff0d\uff20");
    return !text.isEmpty() && starts.contains(text.front());
}

/// Texts come from web pages and are opened in spreadsheets: none of them may become a formula, whatever character
/// the spreadsheet separates cells by. So each stands in quotes, and one that looks like a formula after an apostrophe.
QString csvText(const QString& text)
{
    QString cell = plainText(text);
    if (beginsFormula(cell))
        cell.prepend(u'\'');
    return u'"' + cell.replace(u'"', QLatin1String("\"\"")) + u'"';
}

QString csvCell(const QJsonValue& value)
{
    if (value.isString())
        return csvText(value.toString());
    if (value.isBool())
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    return value.isDouble() ? QString::number(value.toInteger()) : QString();
}

QString csvLine(const ExportedResult& result)
{
    const QJsonObject values = jsonOfRecord(result.record, result.query, result.number);
    QStringList cells;
    for (const char16_t* column : CsvColumns)
        cells.append(csvCell(values.value(QStringView(column))));
    return cells.join(u',') + QStringLiteral("\r\n");
}

QString csvHeader()
{
    QStringList names;
    for (const char16_t* column : CsvColumns)
        names.append(QString::fromUtf16(column));
    return names.join(u',') + QStringLiteral("\r\n");
}

} // namespace

QList<ExportedResult> resultsBelow(const QueryCorePtr& node, ExportedResults which)
{
    QList<ExportedResult> results;
    for (const QueryCorePtr& query : queriesBelow(node)) {
        ResultList records = query->snapshot().fields._currentResult.value_or(ResultList());
        sortResults(records, ByRank);
        qsizetype number = 0;
        for (const ResultRecord& record : records) {
            const ExportedResult result{record, query, ++number};
            if (which == ExportedResults::All || result.isNew())
                results.append(result);
        }
    }
    return results;
}

bool writeJsonResults(const QueryCorePtr& node, ExportedResults which, ByteSink& sink)
{
    const QList<ExportedResult> results = resultsBelow(node, which);
    bool written = put(sink, QStringLiteral("{\"results\": ["));
    QString separator = QStringLiteral("\n");
    for (const ExportedResult& result : results) {
        written = written && put(sink, separator + jsonLine(jsonOfRecord(result.record, result.query, result.number)));
        separator = QStringLiteral(",\n");
    }
    return written && put(sink, results.isEmpty() ? QStringLiteral("]}\n") : QStringLiteral("\n]}\n"));
}

bool writeCsvResults(const QueryCorePtr& node, ExportedResults which, ByteSink& sink)
{
    bool written = put(sink, csvHeader());
    for (const ExportedResult& result : resultsBelow(node, which))
        written = written && put(sink, csvLine(result));
    return written;
}

} // namespace quarry
