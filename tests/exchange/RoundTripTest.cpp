// What is exported and imported again is what it was.

#include "ExchangeRig.h"
#include "exchange/JsonShapes.h"
#include "exchange/OpmlText.h"
#include "exchange/TreeWalk.h"
#include "support/ArchiveJson.h"

#include <QSet>

namespace quarry::test {
namespace {

/// What OPML promises to bring back of a node.
QString definitionOf(const QueryCore& node)
{
    const QueryFields f = node.snapshot().fields;
    const auto text = [](const std::optional<QString>& value) { return value ? u'"' + *value + u'"' : u"none"_s; };
    return (QStringList{f._uuid, text(f._title), text(f._query), text(f._highlightString),
                        QString::number(f._wordsRestriction.value_or(0)), f._websiteRestriction.value_or(QString()),
                        f._urlRegularExpression.value_or(QString()), QString::number(f._queryDisabled),
                        QString::number(f._computeCheckSumOfLinks), QString::number(f._isAdvancedQuery),
                        QString::number(f._isFolder), QString::number(f._isFolder || f._isSuscribedToBlacklist),
                        QString::number(f._highlightState)} +
            f._combinedQueryList.value_or(QStringList{u"no list"_s}) + node.excludedHosts())
        .join(u'|');
}

QStringList definitionsOf(const QueryCorePtr& root)
{
    QStringList all;
    walk(root, [&](const QueryCorePtr& node, int depth) {
        if (node != root)
            all.append(QString::number(depth) + u'|' + definitionOf(*node));
    });
    return all;
}

QueryCorePtr goldenTree()
{
    return loadTree(goldenFile("db.qsdata")).root;
}

/// The children of the root, as they lie in a database.
QJsonValue storedChilds(const QueryCorePtr& root)
{
    MemorySink sink;
    EXPECT_TRUE(saveTree(root, sink));
    return ArchiveJson::of(sink.bytes).toObject()[u"entries"_s].toObject()[u"queryChildsKey"_s];
}

TEST(RoundTrip, OpmlBringsEveryDefinitionBack)
{
    for (const QueryCorePtr& tree : {oddTree(), goldenTree(), newRoot()}) {
        const QByteArray opml = exported(tree, ExportFormat::Opml);
        const QueryCorePtr back = rootWith(opml);
        EXPECT_EQ(definitionsOf(back), definitionsOf(tree));
        EXPECT_EQ(exported(back, ExportFormat::Opml), opml);
    }
}

TEST(RoundTrip, AnyTextSurvivesAnAttribute)
{
    for (const QString& text : {OddText, u""_s, u"\\"_s, u"\\\\u0000"_s, u"\n"_s, QString(QChar(0))}) {
        EXPECT_EQ(opmlUnescaped(opmlEscaped(text)), text);
        for (const QStringList& list : {QStringList{}, {text}, {text, text}, {text, u""_s}, {u""_s, text, u"\n\n"_s}})
            EXPECT_EQ(opmlUnescapedList(opmlEscapedList(list)), list);
    }
    for (const QString& broken : {u"\\"_s, u"\\x"_s, u"\\u12"_s, u"\\u12g4"_s, u"\\u 123"_s, u"\\u+123"_s})
        EXPECT_EQ(opmlUnescaped(broken), std::nullopt) << broken.toStdString();
}

TEST(RoundTrip, OutlinesOfOtherProgramsBecomeQueriesAndFolders)
{
    const QueryCorePtr root = rootWith(R"(<opml version="1.0"><head><title>x</title></head><body>
        <outline text="Garden"><outline text=" raised   bed "/><!-- x --><other><outline text="no"/></other></outline>
        <outline text="fugue" xmlns:q="urn:x-quarryspotter:opml" q:site="s.example" q:kind="advanced" q:unknown="1"/>
        <outline text="Both" xmlns:q="urn:x-quarryspotter:opml" q:kind="combined" q:combined="a&#10;b"/>
        </body></opml>)");
    const auto childs = root->childs().value_or(QList<QueryCorePtr>());
    ASSERT_EQ(childs.size(), 3);
    ASSERT_EQ(childs[0]->numberOfChilds(), 1);
    EXPECT_EQ(childs[0]->title(), u"Garden"_s);
    EXPECT_EQ(childs[0]->childs()->first()->storedQuery(), u"raised+bed"_s);
    EXPECT_EQ(childs[0]->childs()->first()->excludedHosts(), QueryCore::init()->excludedHosts());
    EXPECT_EQ(childs[1]->kind(), QueryKind::Advanced);
    EXPECT_EQ(childs[1]->wordsRestriction(), 1);
    EXPECT_EQ(childs[1]->websiteRestriction(), u"s.example"_s);
    EXPECT_EQ(childs[2]->combinedQueries(), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_EQ(childs[2]->title(), u"Both"_s);
}

TEST(RoundTrip, AQsExportBringsEverythingBackUnknownKeysToo)
{
    for (const QueryCorePtr& tree : {goldenTree(), oddTree(), newRoot()}) {
        // A root of the same identity, so that key paths and parents come out the same.
        QueryFields fields = newRoot()->snapshot().fields;
        fields._uuid = tree->UUID();
        const QueryCorePtr home = QueryCore::fromArchive(fields);
        rootWith(exported(tree, ExportFormat::QsExport), home);
        // As the tree is after one save: what is written of a new node and of one that was read differs.
        MemorySink saved;
        ASSERT_TRUE(saveTree(tree, saved));
        EXPECT_EQ(storedChilds(home), storedChilds(loadTree(saved.bytes).root));
    }
}

TEST(RoundTrip, OneNodeComesAloneAndStandsWhereItWasPut)
{
    const QueryCorePtr golden = goldenTree();
    const QueryCorePtr folder = golden->findQueryForUUID(u"06060606-0A1B-4C2D-8E3F-000000000006"_s);
    const QueryCorePtr root = rootWith(exported(folder, ExportFormat::QsExport));
    ASSERT_EQ(root->numberOfChilds(), 1);
    const QueryCorePtr back = root->childs()->first();
    EXPECT_EQ(back->UUID(), folder->UUID());
    EXPECT_EQ(back->parent(), root);
    const QueryCorePtr query = back->childs()->first();
    EXPECT_EQ(query->keyPath(), root->UUID() + u'.' + back->UUID() + u'.' + query->UUID());
    EXPECT_EQ(query->parent(), back);
    EXPECT_EQ(query->nbItems(), 1);
}

TEST(RoundTrip, WhatIsThereAlreadyComesInAsACopyWithItsOwnIdentities)
{
    const QueryCorePtr tree = goldenTree();
    const QByteArray bytes = exported(tree, ExportFormat::QsExport);
    const QueryCorePtr root = rootWith(bytes);
    const Grafting second = graft(readImport(bytes, QString()), root, root);
    EXPECT_EQ(second.renamed, 10);
    EXPECT_EQ(second.queries, 6);
    EXPECT_EQ(second.folders, 4);
    EXPECT_EQ(second.results, 6);
    rootWith(exported(tree, ExportFormat::Opml), root);
    QSet<QString> identities;
    qsizetype count = 0;
    walk(root, [&](const QueryCorePtr& node, int) {
        identities.insert(node->UUID());
        ++count;
        for (const ResultRecord& record : node->results().value_or(ResultList())) {
            EXPECT_EQ(record.parentQueryUuid().value_or(node->UUID()), node->UUID());
            if (record.linkUuid()) {
                identities.insert(*record.linkUuid());
                ++count;
            }
        }
    });
    EXPECT_EQ(identities.size(), count);
    // The first query's unknown keys came along both times.
    const QJsonArray childs = storedChilds(root).toArray();
    ASSERT_EQ(childs.size(), 18);
    for (const qsizetype place : {0, 6})
        EXPECT_EQ(childs[place].toObject()[u"entries"_s].toObject()[u"futureTextKey"_s].toString(),
                  u"carried or ignored"_s);
}

TEST(RoundTrip, IdentitiesThatAreNoneOrComeTwiceAreMadeAnew)
{
    const QueryCorePtr root = rootWith(R"(<opml xmlns:q="urn:x-quarryspotter:opml"><body>
        <outline text="a" q:kind="plain" q:id="../../../etc"/>
        <outline text="b" q:kind="plain" q:id="02020202-0a1b-4c2d-8e3f-000000000002"/>
        <outline text="c" q:kind="plain" q:id="02020202-0A1B-4C2D-8E3F-000000000002"/></body></opml>)");
    const auto childs = root->childs().value_or(QList<QueryCorePtr>());
    ASSERT_EQ(childs.size(), 3);
    EXPECT_EQ(childs[0]->UUID().size(), 36);
    EXPECT_EQ(childs[1]->UUID(), u"02020202-0a1b-4c2d-8e3f-000000000002"_s);
    EXPECT_NE(childs[2]->UUID().toLower(), childs[1]->UUID());
}

} // namespace
} // namespace quarry::test
