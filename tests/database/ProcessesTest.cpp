#include "DatabaseFixture.h"

#include <QProcess>

#include <random>

using namespace quarry;
using namespace quarry::test;

namespace {

using Processes = DatabaseFixture;

TEST_F(Processes, AKillAtAnyInstantOfASaveLeavesAWholeState)
{
    std::mt19937 random(20261121); // NOLINT: the same instants are not to be expected anyway.
    const auto chance = [&random](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    for (int round = 0; round < 25; ++round) {
        QProcess child;
        child.start(QStringLiteral(DATABASE_CHILD), {home.path()});
        int saved = 0;
        for (int lines = 1 + chance(3); lines > 0; --lines) {
            while (!child.canReadLine())
                ASSERT_TRUE(child.waitForReadyRead(60000));
            saved = child.readLine().trimmed().toInt();
        }
        // Somewhere within the next save: so far as this loop happens to take.
        std::atomic<int> spin = chance(4000000);
        while (--spin > 0) {
        }
        child.kill();
        ASSERT_TRUE(child.waitForFinished(60000));
        while (child.canReadLine())
            saved = child.readLine().trimmed().toInt();

        Engine engine(parts(), Engine::AtEnd::Discard);
        ASSERT_EQ(engine.lastError(), QString());
        const QueryCorePtr node = engine.queries()->first();
        const QString state = node->title();
        EXPECT_GE(state.toInt(), saved) << "what was saved is there";
        EXPECT_LE(state.toInt(), saved + 1);
        const ResultList results = *node->results();
        EXPECT_EQ(results.size(), 1000);
        for (const ResultRecord& record : results)
            ASSERT_EQ(record.title(), state);
    }
    ASSERT_EQ(addElsewhere(QStringLiteral("after")), QString());
    EXPECT_EQ(QDir(home->supportFolder()).entryList({QStringLiteral(".dat*")}, QDir::Files | QDir::Hidden),
              QStringList());
}

} // namespace
