#include "model/QueryArchive.h"

#include "archive/PlistWriter.h"
#include "support/ArchiveJson.h"
#include "support/ArchiveVariants.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace quarry {
namespace {

using test::ArchiveJson;
using test::difference;
using test::goldenFile;
using test::goldenJson;

QByteArray saved(const QueryCorePtr& root)
{
    MemorySink sink;
    return saveTree(root, sink) ? sink.bytes : QByteArray();
}

/// What must be in the file after a load and a save. Entries of a node that no rule names are carried through.
QJsonValue expectedAfterSave()
{
    QByteArray text = goldenFile("db_loaded_saved.json");
    const QByteArray place = "\"hiddenResultKey\": [";
    EXPECT_EQ(text.count(place), 1);
    text.replace(place, "\"futureNativeIntKey\": {\"#native\": 7}, \"futureTextKey\": \"carried or ignored\"," + place);
    return QJsonDocument::fromJson(text).object()[QLatin1String("root")];
}

TEST(QueryArchive, AnotherWritersFileIsReadExactly)
{
    for (const char* name : {"db.qsdata", "db_apple.qsdata"})
        EXPECT_EQ(difference(ArchiveJson::of(goldenFile(name)), goldenJson("db.json")[QLatin1String("root")]),
                  QString());
    EXPECT_EQ(difference(ArchiveJson::of(goldenFile("Blacklist")), goldenJson("Blacklist.json")[QLatin1String("root")]),
              QString());
}

TEST(QueryArchive, NothingOfAnotherWritersFileIsLostInASave)
{
    for (const char* name : {"db.qsdata", "db_apple.qsdata"}) {
        LoadedTree first = loadTree(goldenFile(name));
        ASSERT_TRUE(first.root) << first.reason.toStdString();
        const QByteArray once = saved(first.root);
        EXPECT_EQ(difference(ArchiveJson::of(once), expectedAfterSave()), QString());
        const LoadedTree second = loadTree(once);
        ASSERT_TRUE(second.root) << second.reason.toStdString();
        first.root.reset();
        EXPECT_EQ(difference(ArchiveJson::of(saved(second.root)), expectedAfterSave()), QString());
    }
}

TEST(QueryArchive, EverySpellingOfTheBinaryFormReadsTheSame)
{
    const test::Spelling spellings[] = {
        {.offsetWidth = 4, .referenceWidth = 4},
        {.offsetWidth = 3, .referenceWidth = 3, .order = 7},
        {.offsetWidth = 8, .referenceWidth = 8, .integerWidth = 8, .uidWidth = 8, .longCounts = true},
        {.offsetWidth = 7, .referenceWidth = 5, .integerWidth = 4, .uidWidth = 3, .order = 11},
        {.integerWidth = 16, .uidWidth = 2, .wideTexts = true, .order = 23},
    };
    for (const char* name : {"db.qsdata", "db_apple.qsdata"}) {
        for (const test::Spelling& spelling : spellings) {
            const QByteArray bytes = test::Respelled::of(goldenFile(name), spelling);
            const LoadedTree tree = loadTree(bytes);
            ASSERT_TRUE(tree.root) << tree.reason.toStdString();
            EXPECT_EQ(difference(ArchiveJson::of(saved(tree.root)), expectedAfterSave()), QString());
        }
    }
}

/// A tree in the XML form: a root with one query, which has these entries. "@7" stands for a reference to object 7,
/// "<of 7>" for the beginning of an object of class 7. Further objects are counted from 10.
QByteArray xmlTree(const QByteArray& entries = {}, const QByteArray& objects = {})
{
    QByteArray text = R"(<?xml version="1.0" encoding="UTF-8"?>
        <plist version="1.0"><dict><key>$archiver</key><string>NSKeyedArchiver</string>
        <key>$version</key><integer>100000</integer><key>$top</key><dict><key>tree</key>@1</dict>
        <key>$objects</key><array><string>$null</string>
        <of 3><key>queryChildsKey</key><array>@2</array><key>queryIsGroupKey</key><true/></dict><of 3>)";
    text += entries + "</dict>";
    for (const char* name : {"QueryCore", "NSMutableString", "NSDictionary", "NSURL", "NSDate", "NSNumber", "NSArray"})
        text += "<dict><key>$classname</key><string>" + QByteArray(name) + "</string></dict>";
    text += objects + "</array></dict></plist>";
    static const QRegularExpression Class(QStringLiteral("<of (\\d+)>"));
    static const QRegularExpression Reference(QStringLiteral("@(\\d+)"));
    return QString::fromUtf8(text)
        .replace(Class, QStringLiteral("<dict><key>$class</key>@\\1"))
        .replace(Reference, QStringLiteral("<dict><key>CF$UID</key><integer>\\1</integer></dict>"))
        .toUtf8();
}

/// A class that no program knows.
const QByteArray Later = "<dict><key>$classname</key><string>Later</string></dict>";

QueryCorePtr onlyChild(const LoadedTree& tree)
{
    return tree.root && tree.root->childs() ? tree.root->childs()->value(0) : nullptr;
}

/// The only query of a saved tree, read entry by entry.
struct SavedQuery {
    explicit SavedQuery(const QByteArray& bytes) : opened(KeyedArchive::open(bytes)), reader(opened.archive)
    {
        EXPECT_TRUE(opened.archive) << opened.reason.toStdString();
        query = at(entry(reader.root(), "queryChildsKey"), 0);
    }
    ArchivedValue entry(const ArchivedValue& value, const char* name)
    {
        return reader.entry(value, QLatin1String(name));
    }
    ArchivedValue at(const ArchivedValue& list, std::size_t index)
    {
        return reader.value(reader.list(list)->at(index));
    }
    bool isTrue(const ArchivedValue& value, const char* name)
    {
        return entry(value, name).item.type == PlistItem::Type::True;
    }

    KeyedArchive::Opened opened;
    ArchiveReader reader;
    ArchivedValue query;
};

TEST(QueryArchive, BoxedOldAndInPlaceFormsAreRead)
{
    // 10: a text in UTF-8 bytes, 11: a boxed text, 12: a record in the older spelling
    const QByteArray objects = R"(<of 4><key>NS.bytes</key><data>5pel5pys</data></dict>
        <of 4><key>NS.string</key><string>boxed</string></dict>
        <of 5><key>NS.key.0</key><string>title Result Key</string><key>NS.object.0</key>@10
          <key>NS.key.1</key><string>link rank key</string><key>NS.object.1</key><real>7</real>
          <key>NS.key.2</key><string>User saw this link key</string><key>NS.object.2</key><integer>1</integer>
          <key>NS.key.3</key><string>dateoffindKey</string><key>NS.object.3</key>@13
          <key>NS.key.4</key><string>URL Result Key</string><key>NS.object.4</key>@14
          <key>NS.key.5</key><string>item rating key</string><key>NS.object.5</key>@16</dict>
        <of 7><key>NS.time</key><integer>-5</integer></dict>
        <of 6><key>NS.base</key>@15<key>NS.relative</key><string>../b?c</string></dict>
        <of 6><key>NS.base</key>@0<key>NS.relative</key><string>http://example.org/x/y</string></dict>
        <of 8><key>NS.intval</key><integer>3</integer></dict>)";
    const QByteArray entries = R"(<key>queryStringKey</key>@11<key>queryHighlighStateKey</key><integer>1</integer>
        <key>updateKey</key><date>2014-01-25T10:00:00Z</date>
        <key>resultKey</key><of 9><key>NS.object.0</key>@12</dict>
        <key>combinedQueryListKey</key><array><string>a</string>@11</array>
        <key>excludedDomainsKey</key><dict><key>host.example</key><true/></dict>)";
    const LoadedTree tree = loadTree(xmlTree(entries, objects));
    const QueryCorePtr query = onlyChild(tree);
    ASSERT_TRUE(query) << tree.reason.toStdString();

    EXPECT_EQ(query->query(), QStringLiteral("boxed"));
    EXPECT_EQ(query->parent(), tree.root) << "the folder that holds it, where the entry is missing";
    EXPECT_EQ(query->combinedQueries(), QStringList({QStringLiteral("a"), QStringLiteral("boxed")}));
    EXPECT_EQ(query->date(), Date(412336800.0));
    EXPECT_TRUE(query->isHighlightActive());
    EXPECT_EQ(query->excludedHosts(), QStringList(QStringLiteral("host.example")));
    const ResultRecord record = query->results().value_or(ResultList()).value(0);
    EXPECT_EQ(record.title(), QStringLiteral("日本"));
    EXPECT_EQ(record.rank(), 7);
    EXPECT_EQ(record.rating(), 3);
    EXPECT_EQ(record.userSaw(), true);
    EXPECT_EQ(record.dateOfFind(), Date(-5.0));
    EXPECT_EQ(record.urlText(), QStringLiteral("http://example.org/b?c"));

    // What is of another type than this program writes stays as it was until it is changed.
    const LoadedTree again = loadTree(saved(tree.root));
    const ResultRecord same = onlyChild(again)->results()->value(0);
    EXPECT_EQ(same, record);
    EXPECT_NE(same, record.withRank(7));
    query->markItemAsRead(record);
    EXPECT_EQ(onlyChild(loadTree(saved(tree.root)))->results()->value(0).userSaw(), true);
}

TEST(QueryArchive, MissingEntriesReadAsTheirDefaults)
{
    const LoadedTree first = loadTree(xmlTree());
    const QueryCorePtr query = onlyChild(first);
    ASSERT_TRUE(query) << first.reason.toStdString();
    const QueryFields fields = query->snapshot().fields;
    EXPECT_FALSE(fields._query || fields._title || fields._lastUpdate || fields._hiddenResults || fields._urlFilters ||
                 fields._combinedQueryList || fields._queryDisabled || fields._isFolder || fields._isAdvancedQuery);
    EXPECT_TRUE(fields._currentResult && fields._currentResult->isEmpty());
    EXPECT_TRUE(fields._excludedDomains && fields._excludedDomains->isEmpty());
    EXPECT_EQ(fields._wordsRestriction, 0);
    EXPECT_EQ(fields._websiteRestriction, QStringLiteral(""));
    EXPECT_TRUE(fields._isSuscribedToBlacklist);
    EXPECT_FALSE(fields._uuid.isEmpty());
    EXPECT_NE(onlyChild(loadTree(xmlTree()))->UUID(), query->UUID()) << "made anew with every load";
}

TEST(QueryArchive, WhatReferencesOneAnotherInACircleIsCarriedThrough)
{
    // 10 and 11 refer to each other, and 11 to the query itself.
    const QByteArray objects = "<of 12><key>other</key>@11</dict><of 12><key>back</key>@10<key>query</key>@2"
                               "<key>native</key><true/></dict>" +
                               Later;
    const LoadedTree tree = loadTree(xmlTree("<key>futureKey</key>@10", objects));
    ASSERT_TRUE(tree.root) << tree.reason.toStdString();
    for (QByteArray bytes = saved(tree.root); const int round : {1, 2}) {
        SavedQuery is(bytes);
        const ArchivedValue one = is.entry(is.query, "futureKey");
        const ArchivedValue two = is.entry(one, "other");
        EXPECT_EQ(is.entry(two, "back").object, one.object) << round;
        EXPECT_EQ(is.entry(two, "query").object, is.query.object) << round;
        EXPECT_TRUE(is.isTrue(two, "native"));
        EXPECT_EQ(is.reader.text(is.entry(is.entry(two, "$class"), "$classname"))->toString(), QStringLiteral("Later"));
        bytes = saved(loadTree(bytes).root);
    }
}

TEST(QueryArchive, ChildrenInACollectionOfAnUnknownKindAreCarriedThrough)
{
    const LoadedTree tree =
        loadTree(xmlTree("<key>queryChildsKey</key>@10", "<of 11><key>kept</key><true/></dict>" + Later));
    ASSERT_TRUE(tree.root) << tree.reason.toStdString();
    SavedQuery is(saved(tree.root));
    EXPECT_TRUE(is.isTrue(is.entry(is.query, "queryChildsKey"), "kept"));
}

TEST(QueryArchive, CombinedTextsKeepWhatElseStandsAmongThem)
{
    const QByteArray objects = "<of 9><key>NS.objects</key><array><string>one</string>@11<string>two</string>"
                               "<integer>7</integer></array></dict><of 12><key>kept</key><true/></dict>" +
                               Later;
    const LoadedTree tree = loadTree(xmlTree("<key>combinedQueryListKey</key>@10", objects));
    ASSERT_TRUE(tree.root) << tree.reason.toStdString();
    EXPECT_EQ(onlyChild(tree)->combinedQueries(), (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
    for (QByteArray bytes = saved(tree.root); const int round : {1, 2}) {
        SavedQuery is(bytes);
        const ArchivedValue list = is.entry(is.query, "combinedQueryListKey");
        ASSERT_EQ(is.reader.list(list)->count(), 4U) << round;
        EXPECT_TRUE(is.isTrue(is.at(list, 1), "kept"));
        EXPECT_EQ(is.reader.text(is.at(list, 2))->toString(), QStringLiteral("two"));
        EXPECT_EQ(is.reader.number(is.at(list, 3))->integer, 7);
        bytes = saved(loadTree(bytes).root);
    }
}

TEST(QueryArchive, WhateverIsSavedCanBeReadBack)
{
    // Hosts, texts and rules that many queries have in common take next to no room in the file.
    const QueryCorePtr root = QueryCore::initWithQueryFolder(QStringLiteral(""));
    QueryFields fields;
    fields._excludedDomains.emplace();
    for (int host = 0; host < 400; ++host)
        fields._excludedDomains->insert(QStringLiteral("host%1.example").arg(host), true);
    fields._urlRegularExpression = QString(20000, u'x');
    fields._combinedQueryList.emplace();
    for (int text = 0; text < 400; ++text)
        fields._combinedQueryList->append(QStringLiteral("one of the texts %1 ").arg(text).repeated(10));
    const FilterObject rule = onlyChild(loadTree(goldenFile("db.qsdata")))->filters()->first();
    fields._urlFilters = QList<FilterObject>(400, rule);
    for (int query = 0; query < 400; ++query)
        root->addChild(QueryCore::fromArchive(fields));
    const LoadedTree tree = loadTree(saved(root));
    ASSERT_TRUE(tree.root) << tree.reason.toStdString();
    const QueryFields read = tree.root->childs()->last()->snapshot().fields;
    EXPECT_EQ(read._excludedDomains, fields._excludedDomains);
    EXPECT_EQ(read._combinedQueryList, fields._combinedQueryList);
    EXPECT_EQ(read._urlRegularExpression, fields._urlRegularExpression);
    EXPECT_EQ(read._urlFilters->size(), 400);

    // As deep as is read, then one folder more.
    const QueryCorePtr top = QueryCore::initWithQueryFolder(QStringLiteral(""));
    QueryCorePtr deepest = top;
    const auto goDeeper = [&deepest] {
        const QueryCorePtr folder = QueryCore::initWithQueryFolder(QStringLiteral("f"));
        deepest->addChild(folder);
        deepest = folder;
    };
    for (int depth = 0; depth < MaximumTreeDepth; ++depth)
        goDeeper();
    EXPECT_TRUE(loadTree(saved(top)).root);
    goDeeper();
    EXPECT_TRUE(saved(top).isEmpty());
}

TEST(QueryArchive, DamageGivesATreeOrAReason)
{
    const QByteArray whole = goldenFile("db_apple.qsdata");
    const auto check = [](const QByteArray& bytes, const std::string& what) {
        const LoadedTree tree = loadTree(bytes);
        EXPECT_NE(tree.root == nullptr, tree.reason.isEmpty()) << what;
        EXPECT_TRUE(!tree.root || !saved(tree.root).isEmpty()) << what;
        return tree.root != nullptr;
    };
    for (qsizetype size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(check(whole.left(size), "cut at " + std::to_string(size))) << "taken for a whole one";
        QByteArray changed = whole;
        changed[size] = static_cast<char>(changed[size] ^ (1 << (size % 8)));
        check(changed, "changed at " + std::to_string(size));
        changed[size] = static_cast<char>(~whole[size]);
        check(changed, "inverted at " + std::to_string(size));
    }
}

TEST(QueryArchive, TrickedArchivesAreRefused)
{
    using Case = std::tuple<const char*, QByteArray>;
    // Every folder lists the next one twice: 2^40 ways down.
    QByteArray doubling;
    for (int next = 11; next < 51; ++next)
        doubling += QByteArray("<of 3><key>queryChildsKey</key><array>@N@N</array></dict>")
                        .replace("N", QByteArray::number(next));
    doubling += "<of 3></dict>";
    // A list of many references to one list of many records.
    const QByteArray many = "<array>" + QByteArray("<dict/>").repeated(3000) + "</array>";
    const QByteArray nodes = "<array>" + QByteArray("<of 3><key>resultKey</key>@10</dict>").repeated(3000) + "</array>";
    const Case cases[] = {
        {"a folder below itself", xmlTree("<key>queryChildsKey</key><array>@1</array>")},
        {"nodes shared without end", xmlTree("<key>queryChildsKey</key><array>@10</array>", doubling)},
        {"lists shared without end", xmlTree("<key>queryChildsKey</key>" + nodes, many)},
        {"an unknown object that leads nowhere", xmlTree("<key>future</key>@9999")},
        {"nothing", QByteArray()},
        {"another property list", QByteArray("<plist version=\"1.0\"><dict/></plist>")},
        {"a list of rules", goldenFile("Blacklist")},
        {"another archiver", xmlTree().replace("NSKeyedArchiver", "SomeArchiver")},
        {"entities that multiply", xmlTree()
                                       .replace("<plist", "<!DOCTYPE p [<!ENTITY a \"aaaaaaaa\"><!ENTITY b "
                                                          "\"&a;&a;\">]><plist")
                                       .replace("$null", "&b;")},
    };
    for (const auto& [what, bytes] : cases) {
        const LoadedTree tree = loadTree(bytes);
        EXPECT_FALSE(tree.root) << what;
        EXPECT_FALSE(tree.reason.isEmpty()) << what;
    }
}

TEST(QueryArchive, ASinkThatRefusesEndsTheSave)
{
    class Refusing final : public ByteSink {
    public:
        bool append(const char*, std::size_t) override { return false; }
    };
    Refusing sink;
    EXPECT_FALSE(saveTree(loadTree(goldenFile("db.qsdata")).root, sink));
    EXPECT_FALSE(saveTree(nullptr, sink));
}

} // namespace
} // namespace quarry
