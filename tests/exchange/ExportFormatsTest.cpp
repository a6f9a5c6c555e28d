// The formats for other programs, read by a reader that knows nothing of this one (Python's).

#include "ExchangeRig.h"
#include "exchange/PlainText.h"
#include "support/TemporaryHome.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace quarry::test {
namespace {

QJsonDocument readBack(const QString& format, const QByteArray& bytes)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"export"_s);
    EXPECT_TRUE(writeFile(file, bytes));
    QProcess python;
    python.start(u"python3"_s, {QStringLiteral(EXPORT_READER), format, file});
    EXPECT_TRUE(python.waitForFinished());
    EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    return QJsonDocument::fromJson(python.readAllStandardOutput());
}

QStringList column(const QJsonArray& rows, const QString& name)
{
    QStringList values;
    for (const QJsonValue& row : rows)
        values.append(row.toObject()[name].toString());
    return values;
}

TEST(ExportFormats, CsvHoldsEveryTextInOneCellAndNoFormula)
{
    const QueryCorePtr tree = oddTree();
    const QueryCorePtr query = queriesBelow(tree).first();
    const QStringList dangers = {u"=1+1"_s, u"+1"_s, u"-1"_s, u"@x"_s, u"\t=1"_s, u"\r=1"_s, u"\uff1d1"_s};
    ResultList records = query->results().value_or(ResultList());
    for (const QString& text : dangers)
        records.append(record(text, u"http://b.example/"_s, 10 + records.size()).withTextFromPage(u"a;=1+1"_s));
    setResults(query, records);
    const QJsonArray rows = readBack(u"csv"_s, exported(tree, ExportFormat::Csv)).array();
    QStringList expected = {u"new"_s, u"'=1+1"_s, plainText(OddText)};
    for (const QString& text : dangers)
        expected.append(u'\'' + text);
    EXPECT_EQ(column(rows, u"title"_s), expected);
    EXPECT_EQ(column(rows, u"url"_s).first(3),
              (QStringList{u"http://a.example/1"_s, u"http://a.example/?a=1&b=2"_s, u"javascript:alert(1)"_s}));
    EXPECT_EQ(column(rows, u"text"_s)[2], plainText(OddText));
    const QJsonObject second = rows[1].toObject();
    EXPECT_EQ(second[u"read"_s].toString() + second[u"new"_s].toString() + second[u"rank"_s].toString(),
              u"truefalse2"_s);
    EXPECT_EQ(second[u"found"_s].toString(), u"2016-11-05T00:53:22Z"_s);
    EXPECT_EQ(second[u"rating"_s].toString(), QString());
    EXPECT_EQ(second[u"queryTitle"_s].toString(), plainText(OddText));
    EXPECT_EQ(readBack(u"csv"_s, exported(tree, ExportFormat::Csv, ExportedResults::New)).array().size(), 1);
}

TEST(ExportFormats, AFeedIsValidAndItsEntriesKeepTheirIdentities)
{
    const QueryCorePtr tree = oddTree();
    const QueryCorePtr query = queriesBelow(tree).first();
    ResultList records = query->results().value_or(ResultList());
    // Twins, records without identity or date, and dates that no calendar shows.
    records.append(records.first());
    records.append(ResultRecord().withTitle(u"bare"_s));
    records.append(ResultRecord().withUrl(Url::fromStored(u"HTTP://a.example/a b\u05e9\"<"_s)));
    records.append(record(u"odd date"_s, u"http://a.example/9"_s, 9).withDateOfFind(Date(std::nan(""))));
    records.append(record(u"far"_s, u"http://a.example/10"_s, 10).withDateOfFind(Date(1e300)));
    setResults(query, records);
    const QByteArray bytes = exported(tree, ExportFormat::Atom);
    EXPECT_EQ(exported(tree, ExportFormat::Atom), bytes);
    const QJsonObject feed = readBack(u"atom"_s, bytes).object();
    EXPECT_EQ(feed[u"id"_s].toString(), u"urn:uuid:"_s + tree->UUID().toLower());
    const QJsonArray entries = feed[u"entries"_s].toArray();
    // The one that is read and not new is left out.
    EXPECT_EQ(column(entries, u"title"_s), (QStringList{u"far"_s, plainText(OddText).simplified(), u"new"_s, u"new"_s,
                                                        u"bare"_s, u"HTTP://a.example/a b\u05e9\"<"_s, u"odd date"_s}));
    EXPECT_EQ(column(entries, u"link"_s)[1], QString());
    EXPECT_EQ(column(entries, u"link"_s)[5], u"HTTP://a.example/a%20b%D7%A9%22%3C"_s);
    EXPECT_EQ(column(entries, u"id"_s)[2], u"urn:uuid:51515151-0a1b-4c2d-8e3f-000000000001"_s);

    // A later refresh brings one more and reads the rest: nothing of the others changes.
    const QJsonObject bare = entries[4].toObject();
    records.prepend(record(u"later"_s, u"http://a.example/5"_s, 5).withNewSincePrevious(true));
    setResults(query, records);
    const QJsonArray later = readBack(u"atom"_s, exported(tree, ExportFormat::Atom)).object()[u"entries"_s].toArray();
    EXPECT_EQ(later.size(), entries.size() + 1);
    EXPECT_TRUE(later.contains(bare));
    const QByteArray fresh = exported(tree, ExportFormat::Atom, ExportedResults::New);
    EXPECT_EQ(column(readBack(u"atom"_s, fresh).object()[u"entries"_s].toArray(), u"title"_s),
              (QStringList{u"later"_s, u"new"_s, u"new"_s}));
}

TEST(ExportFormats, JsonHoldsTextsAsTheyAre)
{
    const QueryCorePtr tree = oddTree();
    const QByteArray bytes = exported(tree, ExportFormat::Json);
    const QJsonArray results = QJsonDocument::fromJson(bytes).object()[u"results"_s].toArray();
    ASSERT_EQ(results.size(), 3);
    const QString text = results[2].toObject()[u"title"_s].toString();
    EXPECT_EQ(text.left(OddText.size() - 3), OddText.left(OddText.size() - 3));
    for (const char* raw : {"\x1b", "\x01", "\xe2\x80\xae", "\xe2\x80\xa8"})
        EXPECT_FALSE(bytes.contains(raw));
    EXPECT_EQ(results[1].toObject()[u"number"_s].toInt(), 2);
}

TEST(ExportFormats, OpmlIsReadByOthers)
{
    const QueryCorePtr tree = oddTree();
    const QJsonArray texts = readBack(u"opml"_s, exported(tree, ExportFormat::Opml)).array();
    ASSERT_EQ(texts.size(), 7);
    EXPECT_EQ(texts[0].toString(), plainText(OddText));
    EXPECT_EQ(texts[1].toString(), u"inner"_s);
}

TEST(ExportFormats, AnEmptyTreeIsValidInEveryFormat)
{
    const QueryCorePtr empty = newRoot();
    EXPECT_TRUE(readBack(u"csv"_s, exported(empty, ExportFormat::Csv)).array().isEmpty());
    EXPECT_EQ(readBack(u"atom"_s, exported(empty, ExportFormat::Atom)).object()[u"updated"_s].toString(),
              u"2001-01-01T00:00:00Z"_s);
    EXPECT_TRUE(readBack(u"opml"_s, exported(empty, ExportFormat::Opml)).array().isEmpty());
    EXPECT_EQ(QJsonDocument::fromJson(exported(empty, ExportFormat::Json)).object(),
              (QJsonObject{{u"results"_s, QJsonArray()}}));
}

} // namespace
} // namespace quarry::test
