// Files that make no sense, or mean harm: a word about it, and the tree as it was.

#include "ExchangeRig.h"
#include "support/TemporaryHome.h"

namespace quarry::test {
namespace {

QByteArray opml(const QByteArray& body)
{
    return "<opml version=\"2.0\" xmlns:quarry=\"urn:x-quarryspotter:opml\">\n<body>\n" + body + "\n</body></opml>";
}

TEST(BrokenImports, SayWhatIsWrongAndWhere)
{
    const QByteArray golden = contentOf(QStringLiteral(QUARRY_TEST_DATA "/golden/Blacklist"));
    ASSERT_FALSE(golden.isEmpty());
    const std::tuple<QByteArray, QString> cases[] = {
        {"", u"it is empty"_s},
        {" \n", u"it is empty"_s},
        {"\x7f"
         "ELF",
         u"neither a qsexport nor OPML"_s},
        {"{\"results\": []}", u"it is JSON"_s},
        {exported(newRoot(), ExportFormat::Csv), u"it is CSV"_s},
        {exported(newRoot(), ExportFormat::Atom), u"it is a feed"_s},
        {"<html><body/></html>", u"begins with <html>"_s},
        {golden, u"no query tree"_s},
        {"bplist00", u"not a binary property list"_s},
        {"<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>", u"archive"_s},
        {"<opml></opml>", u"line 1: there is no <body>"_s},
        {"<opml><body><outline text=\"a\">", u"line 1: "_s},
        {opml("<outline text=\"a\"></body>"), u"line 3: "_s},
        {opml("<outline text=\"a\"/>\n<outline text=\"\x01\"/>"), u"line 4: "_s},
        {opml("<outline text=\"a\"/>\n<outline text=\" \"/>"), u"line 4: an outline has no text"_s},
        {opml("<outline text=\"a\" xmlUrl=\"http://a.example/\"/>"), u"subscription to a feed"_s},
        {opml("<outline text=\"a\" quarry:kind=\"page\"/>"), u"quarry:kind=\"page\" is no kind of query"_s},
        {opml("<outline text=\"a\" quarry:kind=\"combined\"/>"), u"has no texts"_s},
        {opml("<outline text=\"a\" quarry:words=\"all\"/>"), u"no way of matching words"_s},
        {opml("<outline text=\"a\" quarry:enabled=\"1\"/>"), u"neither \"true\" nor \"false\""_s},
        {opml("<outline text=\"a\" quarry:query=\"\\q\"/>"), u"begins no escape"_s},
        {opml("<outline text=\"a\" quarry:kind=\"plain\"><outline text=\"b\"/></outline>"), u"outlines below it"_s},
        {opml(QByteArray("<outline text=\"a\">").repeated(300)), u"nested more than 256 deep"_s},
        {opml(QByteArray("<outline text=\"a\"/>").repeated(100001)), u"more than 100000 outlines"_s},
        {opml(QByteArray(64 << 20, ' ')), u"larger than 64 MiB"_s},
        {R"(<!DOCTYPE o [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;">]><opml><body/></opml>)",
         u"declares a document type"_s},
    };
    for (const auto& [bytes, fault] : cases) {
        const ImportedForest forest = readImport(bytes, QString());
        EXPECT_TRUE(forest.nodes.empty());
        EXPECT_TRUE(forest.fault.contains(fault)) << forest.fault.toStdString() << "\n not \n" << fault.toStdString();
    }
}

TEST(BrokenImports, ACutOrChangedArchiveIsReadOrRefusedWhole)
{
    const QByteArray whole = exported(oddTree(), ExportFormat::QsExport);
    qsizetype refused = 0;
    const auto look = [&](const QByteArray& bytes) {
        const ImportedForest forest = readImport(bytes, QString());
        refused += forest.fault.isEmpty() ? 0 : 1;
        EXPECT_TRUE(forest.fault.isEmpty() || forest.nodes.empty());
        const QueryCorePtr root = newRoot();
        if (forest.fault.isEmpty() && graft(forest, root, root).fault.isEmpty())
            exported(root, ExportFormat::Opml);
    };
    for (qsizetype length = 8; length < whole.size(); length += 7)
        look(whole.left(length));
    EXPECT_EQ(refused, (whole.size() - 8 + 6) / 7); // Its end says where everything is, so no beginning is one.
    for (qsizetype at = 8; at < whole.size(); at += 3) {
        QByteArray changed = whole;
        changed[at] = char(changed[at] ^ 0x55);
        look(changed);
    }
}

TEST(BrokenImports, AFolderThatWouldBeTooDeepIsNotPutThere)
{
    const QueryCorePtr root = newRoot();
    QueryCorePtr deepest = root;
    for (int depth = 0; depth < 200; ++depth) {
        const QueryCorePtr folder = QueryCore::initWithQueryFolder(u"f"_s);
        deepest->addChild(folder);
        deepest = folder;
    }
    const QByteArray deep = exported(root, ExportFormat::QsExport);
    EXPECT_TRUE(graft(readImport(deep, QString()), root, deepest).fault.contains(u"more than 256 deep"_s));
    EXPECT_EQ(deepest->numberOfChilds(), 0);
    EXPECT_EQ(graft(readImport(exported(oddTree(), ExportFormat::Opml), QString()), root, deepest).fault, QString());
    MemorySink sink;
    EXPECT_TRUE(saveTree(root, sink));
}

TEST(BrokenImports, AnExpressionThatIsNotValidComesInAndIsTold)
{
    const QueryCorePtr root = newRoot();
    const auto forest =
        readImport(opml("<outline text=\"a\" quarry:kind=\"advanced\" quarry:urlExpression=\"a(\"/>"), QString());
    const Grafting done = graft(forest, root, root);
    ASSERT_EQ(done.notes.size(), 1);
    EXPECT_TRUE(done.notes.first().contains(u"expression of \"a\" is not valid"_s)) << done.notes.first().toStdString();
    EXPECT_EQ(root->childs()->first()->urlRegularExpressions(), u"a("_s);
}

} // namespace
} // namespace quarry::test
