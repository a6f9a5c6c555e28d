#include "agent/NewResults.h"

#include "database/DatabaseFixture.h"
#include "platform/LoopWorker.h"
#include "support/ManualTimers.h"

#include <QDir>

#include <thread>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

class DatabaseNewsTest : public DatabaseFixture {
protected:
    DatabaseNewsTest() { EXPECT_EQ(addElsewhere(u"tea"_s), QString()); }

    /// Another program saves the tree with its one result read or not.
    void saveElsewhere(bool read)
    {
        DiskFileStore disk;
        NotificationCenter center;
        Engine other({home, clock, pauser, disk, center, nullptr, {}}, Engine::AtEnd::Discard);
        EXPECT_EQ(other.edit([&](Engine& database) {
            const QueryCorePtr query = database.rootQuery()->childs()->first();
            setResults(query, {ResultRecord().withTitle(u"leaves"_s).withUserSaw(read)});
            return QString();
        }),
                  QString());
    }
    void overwrite(const QByteArray& bytes) { ASSERT_TRUE(writeFile(home->databaseFile(), bytes)); }
    /// "2 tea" for each query with something new; "-" where that is as it was told before.
    QString look()
    {
        const std::optional<DatabaseNews> found = reader.read();
        if (!found)
            return u"-"_s;
        EXPECT_EQ(found->unreadResults, !found->queriesWithNewResults.isEmpty());
        QStringList lines;
        for (const QuerySummary& query : found->queriesWithNewResults)
            lines.append(QString::number(query.nbNewItems) + u' ' + query.title);
        return lines.join(u',');
    }
    QStringList filesThere() const
    {
        return QDir(home->supportFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    DatabaseReader reader{home, files};
};

TEST_F(DatabaseNewsTest, AreReadOnceForEachStateOfTheFile)
{
    for (const bool read : {false, true, false}) {
        saveElsewhere(read);
        const int readings = files.reads;
        EXPECT_EQ(look(), read ? QString() : u"1 tea"_s);
        EXPECT_EQ(look(), u"-"_s);
        EXPECT_EQ(files.reads, readings + 1);
    }
    ASSERT_TRUE(QFile::remove(home->databaseFile()));
    EXPECT_EQ(look(), u"-"_s) << "a file that is gone says nothing";
}

TEST_F(DatabaseNewsTest, OfAFaultyFileAreReportedOnceAndNothingIsWritten)
{
    saveElsewhere(false);
    const QByteArray whole = bytesInFile();
    const QStringList there = filesThere();
    files.failReads = true;
    EXPECT_EQ(look(), u"-"_s);
    EXPECT_EQ(look(), u"-"_s);
    EXPECT_EQ(log.size(), 1);
    files.failReads = false;
    EXPECT_EQ(look(), u"1 tea"_s) << "it is read though it did not change";

    overwrite(whole.left(100));
    EXPECT_EQ(look(), QString()) << "damaged, it holds nothing";
    EXPECT_EQ(look(), u"-"_s);
    EXPECT_EQ(log.size(), 2);
    EXPECT_TRUE(log.last().startsWith(u"Database loading 2: Error on database opening InvalidArchive: "_s));
    EXPECT_EQ(filesThere(), there);
    overwrite(whole);
    EXPECT_EQ(look(), u"1 tea"_s);
}

TEST_F(DatabaseNewsTest, OfAFileThatIsBeingWrittenAreReadAgain)
{
    saveElsewhere(false);
    const QByteArray whole = bytesInFile();
    overwrite(whole.left(whole.size() / 2));
    files.afterRead = [&](const QString&) { overwrite(whole); };
    EXPECT_EQ(look(), u"-"_s) << "half of it was there";
    files.afterRead = [&](const QString&) { saveElsewhere(true); };
    EXPECT_EQ(look(), u"1 tea"_s);
    EXPECT_EQ(log, QStringList());
    files.afterRead = nullptr;
    EXPECT_EQ(look(), QString()) << "what was put in its place meanwhile";
}

TEST_F(DatabaseNewsTest, ComeToTheEventLoopFromAnotherThread)
{
    saveElsewhere(false);
    std::thread::id reading;
    files.afterRead = [&](const QString&) { reading = std::this_thread::get_id(); };
    ManualTimers loop;
    std::optional<LoopWorker> worker;
    DatabaseResults results(reader, [&](DatabaseResults::Work work) { worker->run(std::move(work)); });
    worker.emplace(loop);
    QStringList seen;
    const auto look = [&](const QString& name) {
        results.look([&seen, &results, name] {
            seen.append(name + QString::number(results.news().queriesWithNewResults.size()));
        });
    };
    look(u"first "_s);
    EXPECT_FALSE(results.news().unreadResults) << "nothing before the event loop is asked";
    look(u"second "_s);
    ASSERT_TRUE(loop.runUntil([&] { return seen.size() == 2; }));
    EXPECT_EQ(seen, (QStringList{u"first 1"_s, u"second 1"_s}));
    EXPECT_TRUE(results.news().unreadResults);
    EXPECT_NE(reading, std::this_thread::get_id());
    look(u"dropped"_s);
    worker.reset();
    loop.runPosted();
    EXPECT_EQ(seen.size(), 2) << "the agent has ended";
}

} // namespace
