#include "DatabaseFixture.h"

#include <QDir>

#include <fcntl.h>
#include <sys/stat.h>

#include <stdexcept>

using namespace quarry;
using namespace quarry::test;

namespace {

using DatabaseFile = DatabaseFixture;

TEST_F(DatabaseFile, ANewHomeGetsAnUnnamedFolderAndReadersWriteNothing)
{
    {
        Engine engine(parts(), Engine::AtEnd::Discard);
        ASSERT_TRUE(engine.rootQuery()->isQueryFolder());
        EXPECT_EQ(engine.rootQuery()->storedQuery(), QStringLiteral(""));
        EXPECT_EQ(engine.numberOfQueries(), 0U);
    }
    EXPECT_FALSE(QFile::exists(home->databaseFile()));
    {
        Engine engine(parts(), Engine::AtEnd::Save);
    }
    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(home->databaseFile()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0660U);
}

TEST_F(DatabaseFile, UnforcedSavesWithinAMinuteAreDropped)
{
    Engine engine(parts(), Engine::AtEnd::Discard);
    engine.addQuery(QStringLiteral("one"), false);
    engine.addQuery(QStringLiteral("two"), false);
    EXPECT_EQ(titlesInFile(), QStringList(QStringLiteral("one")));
    clock.advance(59.9);
    EXPECT_TRUE(engine.saveDatabase(false));
    EXPECT_EQ(titlesInFile().size(), 1);
    clock.advance(0.1);
    notifications.post(QStringLiteral("DBInternalUpdate")); // An update pass ends.
    EXPECT_EQ(titlesInFile().size(), 2);
    engine.addQuery(QStringLiteral("three"), false);
    EXPECT_TRUE(engine.saveDatabase(true));
    EXPECT_EQ(titlesInFile().size(), 3);
}

TEST_F(DatabaseFile, TheFilesOwnDateThrottlesTheFirstSave)
{
    ASSERT_EQ(addElsewhere(QStringLiteral("one")), QString());
    const Date written = dateOfFile();
    using Case = std::tuple<double, bool>;
    // The last: the clock was set back by more than a day since the file was written.
    for (const auto& [secondsAfter, saves] :
         {Case{30, false}, Case{59.9, false}, Case{60.1, true}, Case{-3600, false}, Case{-90000, true}}) {
        const struct timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(written.unixSeconds()), 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(home->databaseFile()).constData(), times, 0), 0);
        Engine engine(parts(), Engine::AtEnd::Discard);
        clock.set(dateOfFile().plusSeconds(secondsAfter));
        const int before = files.replacements;
        EXPECT_TRUE(engine.saveDatabase(false));
        EXPECT_EQ(files.replacements - before, saves ? 1 : 0) << secondsAfter;
    }
}

TEST_F(DatabaseFile, ARewrittenFileIsReadAgainBeforeItIsUsed)
{
    using Case = std::tuple<const char*, std::function<void(Engine&)>>;
    const std::vector<Case> cases{
        {"rootQuery", [](Engine& e) { EXPECT_TRUE(e.rootQuery()); }},
        {"addQuery", [](Engine& e) { e.addQuery(QStringLiteral("mine"), true); }},
        {"unreadResults", [](Engine& e) { EXPECT_FALSE(e.unreadResults()); }},
        {"queriesWithNewResults", [](Engine& e) { EXPECT_FALSE(e.queriesWithNewResults().isEmpty()); }},
        {"updateAllQueries", [](Engine& e) { e.updateAllQueries(); }},
    };
    for (const auto& [name, use] : cases) {
        Engine engine(parts(), Engine::AtEnd::Discard);
        const auto before = engine.numberOfQueries();
        ASSERT_EQ(addElsewhere(QString::fromUtf8(name)), QString());
        use(engine);
        EXPECT_TRUE(titlesOf(engine).contains(QString::fromUtf8(name))) << name;
        EXPECT_GT(engine.numberOfQueries(), before) << name;
    }
}

TEST_F(DatabaseFile, TheSameDateMeansTheSameFileAndCostsOneLook)
{
    ASSERT_EQ(addElsewhere(QStringLiteral("one")), QString());
    Engine engine(parts(), Engine::AtEnd::Discard);
    const QueryCorePtr node = engine.queries()->first();
    const int stamps = files.stamps;
    const int reads = files.reads;
    engine.dbSynchCheck();
    EXPECT_EQ(files.stamps, stamps + 1);

    const std::int64_t date = files.stamp(home->databaseFile())->modifiedNanoseconds;
    ASSERT_EQ(addElsewhere(QStringLiteral("two")), QString());
    const struct timespec times[2] = {{0, UTIME_OMIT}, {date / 1000000000, date % 1000000000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(home->databaseFile()).constData(), times, 0), 0);
    EXPECT_EQ(engine.rootQuery()->childs()->first(), node);
    EXPECT_EQ(files.reads, reads);
    EXPECT_EQ(add(engine, QStringLiteral("three")), QString()) << "a writer looks closer";
    EXPECT_EQ(titlesInFile().size(), 3);
}

TEST_F(DatabaseFile, NoKnownDateResetsTheRunningUpdates)
{
    Engine engine(parts(), Engine::AtEnd::Discard);
    const QueryCorePtr node = engine.searchOrCreateQuery(QStringLiteral("x"));
    engine.updateQuery(node);
    EXPECT_EQ(engine.numberOfUpdatesRunning(), 1);
    engine.dbSynchCheck();
    EXPECT_EQ(engine.numberOfUpdatesRunning(), 0);
    ASSERT_TRUE(engine.saveDatabase(true));
    engine.updateQuery(node);
    engine.dbSynchCheck();
    EXPECT_EQ(engine.numberOfUpdatesRunning(), 1) << "the file is known now";
}

TEST_F(DatabaseFile, ASaveSweepsTheTemporariesOfInterruptedWrites)
{
    const QString support = home->supportFolder();
    for (const char* name : {".dat1", ".data-file", ".dat", ".DATx", "x.dat1", "Notes.txt"})
        ASSERT_TRUE(writeFile(support + u'/' + QString::fromUtf8(name), "x"));
    ASSERT_TRUE(QDir(support).mkpath(QStringLiteral(".datFolder/below")));
    ASSERT_TRUE(QDir(support).mkpath(QStringLiteral("Caches")));
    ASSERT_TRUE(writeFile(support + QStringLiteral("/Caches/.dat1"), "x"));
    ASSERT_EQ(addElsewhere(QStringLiteral("one")), QString());
    const QStringList left = QDir(support).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    EXPECT_EQ(QSet<QString>(left.begin(), left.end()),
              (QSet<QString>{QStringLiteral(".dat"), QStringLiteral(".DATx"), QStringLiteral("x.dat1"),
                             QStringLiteral("Notes.txt"), QStringLiteral("Caches"), QStringLiteral(".writerLock"),
                             QStringLiteral("Database.qsdata")}));
    EXPECT_TRUE(QFile::exists(support + QStringLiteral("/Caches/.dat1")));
}

TEST_F(DatabaseFile, EditsOfTwoProgramsBothSurvive)
{
    Engine one(parts(), Engine::AtEnd::Save);
    Engine two(parts(), Engine::AtEnd::Save);
    ASSERT_EQ(add(one, QStringLiteral("a")), QString());
    ASSERT_EQ(add(two, QStringLiteral("b")), QString());
    ASSERT_EQ(add(one, QStringLiteral("c")), QString());
    EXPECT_EQ(titlesInFile(), QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    EXPECT_FALSE(two.saveDatabase(true)) << "its tree is not what the file holds any more";
    EXPECT_FALSE(two.lastError().isEmpty());
    EXPECT_EQ(titlesInFile().size(), 3);
}

TEST_F(DatabaseFile, AnEditThatIsRefusedOrThrowsWritesNothing)
{
    Engine engine(parts(), Engine::AtEnd::Discard);
    ASSERT_EQ(add(engine, QStringLiteral("a")), QString());
    const int before = files.replacements;
    EXPECT_EQ(add(engine, QString()), QStringLiteral("no text"));
    const auto throwing = [](Engine& database) -> QString {
        database.addQuery(QStringLiteral("half"), false);
        throw std::runtime_error("no more");
    };
    EXPECT_THROW(static_cast<void>(engine.edit(throwing)), std::runtime_error);
    EXPECT_FALSE(engine.saveDatabase(true));
    EXPECT_EQ(files.replacements, before);
    ASSERT_EQ(add(engine, QStringLiteral("b")), QString()) << "the lock was let go";
    EXPECT_EQ(titlesInFile(), QStringList({QStringLiteral("a"), QStringLiteral("b")}));
}

TEST_F(DatabaseFile, AProgramThatTakesNoLockDoesNotLoseItsChange)
{
    Engine engine(parts(), Engine::AtEnd::Discard);
    ASSERT_EQ(add(engine, QStringLiteral("a")), QString());
    const QByteArray onlyA = bytesInFile();
    ASSERT_EQ(add(engine, QStringLiteral("b")), QString());
    int applied = 0;
    EXPECT_EQ(engine.edit([&](Engine& database) {
        if (++applied == 1) {
            EXPECT_TRUE(writeFile(home->databaseFile(), onlyA));
        }
        database.addQuery(QStringLiteral("c"), false);
        return QString();
    }),
              QString());
    EXPECT_EQ(applied, 2);
    EXPECT_EQ(titlesInFile(), QStringList({QStringLiteral("a"), QStringLiteral("c")}));
}

} // namespace
