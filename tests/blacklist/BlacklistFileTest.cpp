#include "NotedLines.h"
#include "archive/KeyedArchiver.h"
#include "blacklist/BlacklistStore.h"
#include "blacklist/PrivateFilters.h"
#include "platform/SystemLog.h"
#include "support/ArchiveJson.h"
#include "support/FailingFileStore.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>

#include <thread>

using namespace quarry;
using namespace quarry::test;

namespace {

QByteArray withRule(const QString& text)
{
    BlacklistManager list;
    list.addToBlacklist(BlacklistFilter::initWithRule(text, BlacklistType::Text, true, false));
    return archivedBlacklist({{list.filterAtIndex(0)}, {}});
}

/// A list as a newer program may write it: a rule with an entry that is not known and a type that is no number, an
/// object of another class that refers to the rule, and a text.
QByteArray newerList()
{
    static const ArchiveClass filterClass{{"BlacklistFilter", "NSObject"}};
    static const ArchiveClass otherClass{{"BlacklistGroup", "NSObject"}};
    MemorySink sink;
    KeyedArchiver archiver(sink, 1000);
    const auto root = archiver.reserve(), rule = archiver.reserve(), other = archiver.reserve();
    KeyedArchiver::Entries entries(archiver);
    entries.add(u"BLRuleKey", archiver.text(u"ads"));
    entries.add(u"BLTypeKey", archiver.text(u"three"));
    entries.add(u"BLStateKey", archiver.boolean(true));
    entries.add(u"BLCaseSensitiveKey", archiver.boolean(false));
    entries.add(u"BLNoteKey", archiver.text(u"why"));
    archiver.place(rule, filterClass, entries);
    KeyedArchiver::Entries members(archiver);
    members.add(u"member", rule);
    archiver.place(other, otherClass, members);
    const KeyedArchiver::Slot elements[] = {other, rule, archiver.text(u"loose")};
    archiver.placeList(root, elements);
    return archiver.finish(root) ? sink.bytes : QByteArray();
}

class BlacklistFileTest : public testing::Test {
protected:
    void SetUp() override
    {
        setSystemLogSink([this](const QString& line) { told.append(line); });
    }
    void TearDown() override { setSystemLogSink({}); }

    bool isFiltered(const char* address) { return store.isAddressFiltered(QString::fromUtf8(address), log); }
    QStringList damagedCopies() const
    {
        return QDir(home->supportFolder()).entryList({QStringLiteral("Blacklist.damaged*")});
    }

    QStringList told;
    TemporaryHome home;
    FailingFileStore files;
    NotedLines log;
    BlacklistStore store{home, files};
};

TEST_F(BlacklistFileTest, ReadsAndWritesWhatOthersWrote)
{
    const auto list = unarchivedBlacklist(goldenFile("Blacklist"));
    ASSERT_TRUE(list);
    const BlacklistManager manager(*list);
    EXPECT_EQ(manager.filtersCount(), 9);
    EXPECT_EQ(manager.filterAtIndex(5)->fields(),
              (BlacklistRule{QStringLiteral("^https?://[^/]*ads[0-9]+\\."), 20, true, true}));
    EXPECT_EQ(manager.filterAtIndex(8)->rule(), std::nullopt);
    ASSERT_TRUE(manager.writeListAtPath(files, home->blacklistFile()));
    EXPECT_EQ(difference(ArchiveJson::of(contentOf(home->blacklistFile())),
                         goldenJson("Blacklist.json")[QLatin1String("root")]),
              QString());
    EXPECT_EQ(int(QFile::permissions(home->blacklistFile()) & 0x7fff), 0x6660 & 0x7fff);
}

TEST_F(BlacklistFileTest, CarriesWhatItDoesNotKnow)
{
    const QByteArray newer = newerList();
    const auto list = unarchivedBlacklist(newer);
    ASSERT_TRUE(list);
    ASSERT_EQ(list->filters.size(), 1);
    EXPECT_EQ(difference(ArchiveJson::of(archivedBlacklist(*list)), ArchiveJson::of(newer)), QString());

    list->filters[0]->setType(BlacklistType::FileType);
    const QJsonValue changed = ArchiveJson::of(archivedBlacklist(*list));
    const QJsonValue rule = changed[0][QLatin1String("entries")][QLatin1String("member")];
    EXPECT_EQ(rule[QLatin1String("entries")][QLatin1String("BLTypeKey")], QJsonValue(3))
        << "the object's reference too";
    EXPECT_EQ(rule[QLatin1String("entries")][QLatin1String("BLNoteKey")], QJsonValue(QStringLiteral("why")));
}

TEST_F(BlacklistFileTest, ReadsThePrivateRulesOfQueries)
{
    const auto archive = KeyedArchive::open(goldenFile("Blacklist")).archive;
    ASSERT_TRUE(archive);
    ArchiveReader reader(archive);
    const SlotList slots = *reader.list(reader.root());
    const auto object = [&](std::uint64_t i) { return std::make_shared<const OpaqueObject>(archive, slots.at(i)); };
    EXPECT_EQ(blacklistRuleOf(*object(2)),
              (BlacklistRule{QStringLiteral("tracker.example.com"), BlacklistType::Domain, true, false}));

    PrivateFilters filters;
    const auto inactive = object(4);
    const QString address = QStringLiteral("http://a.b/c.zip");
    EXPECT_TRUE(filters.testString(inactive, address, log));
    EXPECT_TRUE(filters.testString(inactive, address, log));
    EXPECT_FALSE(filters.testString(object(2), address, log));
    EXPECT_FALSE(filters.testString(nullptr, address, log));
    const auto noRule = std::make_shared<const OpaqueObject>(archive, archive->rootSlot());
    EXPECT_FALSE(filters.testString(noRule, address, log));
}

TEST_F(BlacklistFileTest, ASaveIsSeenByTheNextTest)
{
    EXPECT_FALSE(isFiltered("http://host/ads"));
    FailingFileStore otherFiles;
    BlacklistStore other(home, otherFiles);
    const auto add = [](const QString& rule, qint64 type) {
        return [rule, type](BlacklistManager& list) {
            list.addToBlacklist(BlacklistFilter::initWithRule(rule, type, true, false));
            return true;
        };
    };
    EXPECT_EQ(other.change(add(QStringLiteral("ads"), BlacklistType::Text)), QString());
    EXPECT_TRUE(isFiltered("http://host/ads"));
    EXPECT_EQ(other.change(add(QStringLiteral("(open"), BlacklistType::RegularExpression)), QString());

    // Between saves the file is looked at but not read, and a bad expression is logged for each test it is asked in.
    EXPECT_FALSE(isFiltered("http://host/"));
    const int reads = files.reads;
    EXPECT_FALSE(isFiltered("http://host/"));
    EXPECT_TRUE(isFiltered("http://host/ads"));
    EXPECT_EQ(files.reads, reads);
    const QString line = QStringLiteral("Error in Regexp '(open': Parentheses '( )' not balanced");
    EXPECT_EQ(log.take(), QStringList({line, line}));

    EXPECT_EQ(other.change([](BlacklistManager&) { return false; }), QString());
    EXPECT_EQ(otherFiles.replacements, 2);
    EXPECT_TRUE(QFile::remove(home->blacklistFile()));
    EXPECT_FALSE(isFiltered("http://host/ads"));
    EXPECT_EQ(told, QStringList());
}

TEST_F(BlacklistFileTest, AFileThatCannotBeUnderstoodIsNeverLost)
{
    const auto clear = [](BlacklistManager&) { return true; };
    ASSERT_TRUE(writeFile(home->blacklistFile(), QByteArray()));
    EXPECT_FALSE(isFiltered("http://host/ads"));
    EXPECT_EQ(store.change(clear), QString());
    EXPECT_EQ(damagedCopies(), QStringList()) << "an empty file is an empty list";

    const QByteArray damaged = newerList().chopped(60);
    ASSERT_TRUE(writeFile(home->blacklistFile(), damaged));
    EXPECT_FALSE(isFiltered("http://host/ads"));
    EXPECT_FALSE(isFiltered("http://host/ads"));
    EXPECT_EQ(told.size(), 1);
    EXPECT_EQ(BlacklistManager::initWithDatabase(files, home->blacklistFile()).filtersCount(), 0);
    files.failWrites = true;
    EXPECT_NE(store.change(clear), QString());
    EXPECT_EQ(contentOf(home->blacklistFile()), damaged) << "what cannot be copied aside is not replaced";
    files.failWrites = false;
    EXPECT_EQ(store.change(clear), QString());
    ASSERT_EQ(damagedCopies().size(), 1);
    EXPECT_EQ(contentOf(home->supportFolder() + u'/' + damagedCopies().constFirst()), damaged);

    ASSERT_TRUE(writeFile(home->blacklistFile(), withRule(QStringLiteral("ads"))));
    files.failReads = true;
    EXPECT_FALSE(isFiltered("http://host/ads"));
    EXPECT_NE(store.change(clear), QString());
    files.failReads = false;
    EXPECT_TRUE(isFiltered("http://host/ads")) << "readable again, though nothing was saved";
}

TEST_F(BlacklistFileTest, ManyThreadsTestWhileTheListIsSaved)
{
    // Every state of the file catches the first address, by an expression, and none the second.
    const auto save = [&](int i) {
        return store.change([i](BlacklistManager& list) {
            list.addToBlacklist(BlacklistFilter::initWithRule(QStringLiteral("ads|x%1").arg(i), 20, true, i % 2 == 0));
            return true;
        });
    };
    ASSERT_EQ(save(0), QString());
    std::vector<std::thread> threads;
    threads.reserve(20);
    std::atomic<int> wrong{0};
    for (int t = 0; t < 20; ++t) {
        threads.emplace_back([&] {
            BlacklistStore own(home, files);
            for (int i = 0; i < 50; ++i) {
                BlacklistStore& asked = i % 2 == 0 ? store : own;
                wrong += asked.isAddressFiltered(QStringLiteral("http://host/ads"), log) ? 0 : 1;
                wrong += asked.isAddressFiltered(QStringLiteral("http://host/"), log) ? 1 : 0;
            }
        });
    }
    for (int i = 1; i <= 10; ++i)
        EXPECT_EQ(save(i), QString());
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(store.current()->rules.size(), 11);
}

} // namespace
