#include "DatabaseFixture.h"

#include <thread>

using namespace quarry;
using namespace quarry::test;

namespace {

/// root: "a" with one unread and one read result, "off" paused, folder "f" with "b", "c" paused and folder "g" with
/// "d".
class DatabaseTree : public DatabaseFixture {
protected:
    DatabaseTree() : engine(parts(), Engine::AtEnd::Discard)
    {
        const auto result = [](const char* title) { return ResultRecord().withTitle(QString::fromUtf8(title)); };
        a = engine.addQuery(QStringLiteral("a"), false);
        setResults(a, {result("unread").withVisible(false), result("read").withUserSaw(true)});
        off = engine.addQuery(QStringLiteral("off"), false);
        off->setEnabled(false);
        f = engine.addQuery(QStringLiteral("f"), true);
        b = child(f, "b");
        c = child(f, "c");
        c->setEnabled(false);
        g = QueryCore::initWithQueryFolder(QStringLiteral("g"));
        f->addChild(g);
        d = child(g, "d");
        EXPECT_TRUE(engine.saveDatabase(true));
    }
    static QueryCorePtr child(const QueryCorePtr& folder, const char* text)
    {
        const QueryCorePtr node = QueryCore::initWithQuery(QString::fromUtf8(text));
        folder->addChild(node);
        return node;
    }

    Engine engine;
    QueryCorePtr a, b, c, d, f, g, off;
};

TEST_F(DatabaseTree, CountsAndFindsAcrossTheLevels)
{
    EXPECT_EQ(engine.numberOfQueries(), 3U);
    EXPECT_EQ(engine.numberTotalOfQueries(nullptr), 5);
    EXPECT_EQ(engine.numberTotalOfQueries(f), 3);
    EXPECT_EQ(engine.numberTotalOfEnabledQueries(engine.rootQuery()), 3);
    EXPECT_EQ(engine.numberTotalOfEnabledQueries(nullptr), 0);
    EXPECT_EQ(engine.queryForUUID(d->UUID()), d);
    EXPECT_EQ(d->findParentOfQuery(d), g) << "the nodes' own look-up asks the database";
    ASSERT_EQ(engine.resultsInDatabase()->size(), 1) << "the mark counts, not its value";
    EXPECT_EQ(engine.resultsInDatabase()->first().title(), QStringLiteral("unread"));
    EXPECT_TRUE(engine.unreadResults());
    QStringList summary;
    for (const QuerySummary& line : engine.queriesWithNewResults())
        summary.append(line.title + QString::number(line.nbNewItems));
    EXPECT_EQ(summary.join(u' '), QStringLiteral("a1 off0 b0 c0 d0"));
}

TEST_F(DatabaseTree, AddsEveryKindOfNode)
{
    EXPECT_FALSE(engine.addQuery(QString()));
    const QueryCorePtr plain = engine.addQuery(QStringLiteral("two words"));
    EXPECT_EQ(updates.titles, QStringList(QStringLiteral("one two words")));
    EXPECT_EQ(plain->storedQuery(), QStringLiteral("two+words"));
    EXPECT_EQ(engine.numberOfQueries(), 4U);
    EXPECT_EQ(engine.addAdvancedQuery(QStringLiteral("x"), 2, QStringLiteral("example.org"), QString())->kind(),
              QueryKind::Advanced);
    EXPECT_EQ(engine.addAdvancedCombinedQuery({QStringLiteral("x"), QStringLiteral("y")}, 1, QString())->kind(),
              QueryKind::Combined);
    EXPECT_EQ(engine.numberOfQueries(), 4U) << "not counted again by these two";
    engine.removeQuery(plain);
    EXPECT_EQ(engine.numberOfQueries(), 5U);
    EXPECT_FALSE(engine.queryForUUID(plain->UUID()));
    EXPECT_EQ(updates.titles.size(), 1);
}

TEST_F(DatabaseTree, TogglesOneLevelOnly)
{
    engine.toggleQueryIsEnable(f);
    EXPECT_FALSE(b->isEnabled());
    EXPECT_TRUE(c->isEnabled());
    EXPECT_TRUE(d->isEnabled());
    EXPECT_TRUE(g->isEnabled());
    engine.toggleQueryIsEnable(a);
    EXPECT_FALSE(a->isEnabled());
}

TEST_F(DatabaseTree, MovesANodeButNeverOutOfTheTree)
{
    engine.moveQuery(b, engine.rootQuery(), 1);
    EXPECT_EQ(titlesOf(engine).join(u' '), QStringLiteral("a b off f"));
    EXPECT_EQ(log.last(), QStringLiteral("moveQuery:(QueryCore*)inMovedQuery asChildOf:(QueryCore*)inDestinationQuery "
                                         "index:(UInt)inIndex  SHOULD NOT BE USED"));
    engine.moveQuery(f, g, 0);
    engine.moveQuery(f, a, 0);
    engine.moveQuery(f, nullptr, 0);
    EXPECT_EQ(titlesOf(engine).join(u' '), QStringLiteral("a b off f"));
}

TEST_F(DatabaseTree, APassStartsTheTopLevelAndEndsWithItsLastUpdate)
{
    std::vector<NotificationCenter::Sender> finished;
    const auto observer = notifications.addObserver(
        QStringLiteral("uptDidFinish"), [&](const QString&, const auto& sender) { finished.push_back(sender); });
    pauser.onPause = [this] { engine.updateAllQueries(); }; // While a pass runs, another returns at once.
    engine.updateAllQueries();
    EXPECT_EQ(updates.titles.join(u' '), QStringLiteral("all a all f"));
    EXPECT_EQ(pauser.pauses(), std::vector<std::chrono::milliseconds>(2, std::chrono::milliseconds(500)));
    EXPECT_EQ(engine.numberOfUpdatesRunning(), 3);

    clock.advance(60);
    const int saves = files.replacements;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([this] { notifications.post(QStringLiteral("DBInternalUpdate"), a); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(engine.isUpdating());
    EXPECT_EQ(files.replacements, saves + 1);
    EXPECT_EQ(finished, std::vector<NotificationCenter::Sender>(1));
    EXPECT_EQ(terminateReplies, 0);
}

TEST_F(DatabaseTree, StoppingStartsNothingMoreAndLetsTheProgramEnd)
{
    pauser.onPause = [this] { engine.stopAllThreads(); };
    engine.updateAllQueries();
    EXPECT_EQ(updates.titles, QStringList(QStringLiteral("all a")));
    notifications.post(QStringLiteral("DBInternalUpdate"));
    EXPECT_EQ(terminateReplies, 1);
    EXPECT_FALSE(engine.isUpdating());
    EXPECT_EQ(engine.numberOfUpdatesRunning(), 2);
}

TEST_F(DatabaseTree, OneQueryIsUpdatedUnlessItIsPaused)
{
    engine.updateAllQueries();
    engine.updateQuery(off);
    EXPECT_EQ(engine.numberOfUpdatesRunning(), 3);
    engine.updateQuery(b);
    EXPECT_EQ(engine.numberOfUpdatesRunning(), 1) << "set, not counted up";
    EXPECT_EQ(updates.titles.last(), QStringLiteral("all b"));
}

TEST_F(DatabaseTree, ReadersWritersAndReloadsMayRunAtOnce)
{
    std::thread reader([&] {
        for (int i = 0; i < 20; ++i) {
            (void)engine.queriesWithNewResults();
            (void)engine.resultsInDatabase();
            notifications.post(QStringLiteral("DBInternalUpdate"));
            engine.saveDatabase(true);
        }
    });
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(add(engine, QStringLiteral("mine %1").arg(i)), QString());
        EXPECT_EQ(addElsewhere(QStringLiteral("theirs %1").arg(i)), QString());
    }
    reader.join();
    EXPECT_EQ(titlesInFile().size(), 23);
}

} // namespace
