#include "DatabaseFixture.h"

#include <QDir>

using namespace quarry;
using namespace quarry::test;

namespace {

class DatabaseFaults : public DatabaseFixture {
protected:
    QStringList copies() const
    {
        return QDir(home->supportFolder()).entryList({QStringLiteral("Database.damaged-*.qsdata")});
    }
};

TEST_F(DatabaseFaults, AFullDiskLosesNothingAndSaysSo)
{
    Engine engine(parts(), Engine::AtEnd::Discard);
    ASSERT_EQ(add(engine, QStringLiteral("a")), QString());
    files.failWrites = true;
    EXPECT_TRUE(add(engine, QStringLiteral("b")).contains(QLatin1String("No space left on device")));
    EXPECT_EQ(titlesOf(engine), QStringList(QStringLiteral("a"))) << "as if the edit had not been made";
    EXPECT_FALSE(engine.saveDatabase(true));
    EXPECT_EQ(titlesInFile(), QStringList(QStringLiteral("a")));
    files.failWrites = false;
    ASSERT_EQ(add(engine, QStringLiteral("b")), QString());
    EXPECT_EQ(engine.lastError(), QString());
    EXPECT_EQ(titlesInFile().size(), 2);
}

TEST_F(DatabaseFaults, AQueryKeepsItsPagesUntilItsRemovalIsSaved)
{
    Engine engine(parts(), Engine::AtEnd::Discard);
    ASSERT_EQ(add(engine, QStringLiteral("a")), QString());
    const QString pages = home->queryCacheFolder(engine.queries()->first()->UUID());
    ASSERT_TRUE(QDir().mkpath(pages));
    const auto removeFirst = [](Engine& database) {
        database.removeQuery(database.queries()->first());
        return QString();
    };
    files.failWrites = true;
    EXPECT_NE(engine.edit(removeFirst), QString());
    EXPECT_TRUE(QDir(pages).exists());
    files.failWrites = false;
    EXPECT_EQ(engine.edit(removeFirst), QString());
    EXPECT_FALSE(QDir(pages).exists());
}

TEST_F(DatabaseFaults, AFileThatCannotBeReadIsNeverReplaced)
{
    ASSERT_EQ(addElsewhere(QStringLiteral("a")), QString());
    const QByteArray before = bytesInFile();
    files.failReads = true;
    {
        Engine engine(parts(), Engine::AtEnd::Save);
        EXPECT_TRUE(engine.lastError().contains(QLatin1String("Input/output error")));
        EXPECT_TRUE(add(engine, QStringLiteral("b")).contains(QLatin1String("Input/output error")));
        EXPECT_FALSE(engine.saveDatabase(true));
    }
    EXPECT_EQ(bytesInFile(), before);
    EXPECT_EQ(log.filter(QStringLiteral("Database loading: Error on database opening UnreadableFile: ")).size(), 1);
    files.failReads = false;

    Engine engine(parts(), Engine::AtEnd::Discard);
    files.failReads = true;
    ASSERT_EQ(addElsewhere(QStringLiteral("b")), QString());
    engine.dbSynchCheck();
    engine.dbSynchCheck();
    EXPECT_EQ(titlesOf(engine), QStringList(QStringLiteral("a"))) << "the tree read before is kept";
    EXPECT_EQ(log.filter(QStringLiteral("Database loading 2: Error on database opening ")).size(), 1);
}

TEST_F(DatabaseFaults, OtherContentIsCopiedAsideAndReportedOnce)
{
    const QByteArray otherList =
        R"(<?xml version="1.0"?><plist version="1.0"><dict><key>a</key><true/></dict></plist>)";
    for (const QByteArray& bytes : {QByteArray("no archive"), QByteArray(1, '\0'), otherList, QByteArray("bplist00")}) {
        log.clear();
        ASSERT_TRUE(writeFile(home->databaseFile(), bytes));
        Engine engine(parts(), Engine::AtEnd::Discard);
        const QString reason = engine.lastError();
        EXPECT_FALSE(reason.isEmpty());
        EXPECT_EQ(titlesOf(engine), QStringList());
        const int reads = files.reads;
        engine.dbSynchCheck();
        EXPECT_EQ(files.reads, reads);
        EXPECT_EQ(log,
                  QStringList(QStringLiteral("Database loading: Error on database opening InvalidArchive: ") + reason));

        EXPECT_EQ(contentOf(engine.damagedCopy()), bytes);
        EXPECT_EQ(bytesInFile(), bytes) << "a reader leaves it where it is";
        ASSERT_EQ(add(engine, QStringLiteral("a")), QString());
        EXPECT_EQ(contentOf(engine.damagedCopy()), bytes);
        EXPECT_EQ(titlesInFile().size(), 1);
    }
    EXPECT_EQ(copies().size(), 4) << copies().join(u' ').toStdString();
}

TEST_F(DatabaseFaults, ADamagedFileThatCannotBeCopiedIsNotReplaced)
{
    ASSERT_TRUE(writeFile(home->databaseFile(), "no archive"));
    files.failWrites = true;
    Engine engine(parts(), Engine::AtEnd::Discard);
    EXPECT_FALSE(engine.saveDatabase(true));
    files.failWrites = false;
    EXPECT_FALSE(engine.saveDatabase(true)) << "there is no copy yet";
    EXPECT_EQ(bytesInFile(), "no archive");
    EXPECT_EQ(add(engine, QStringLiteral("a")), QString()) << "an edit tries the copy again";
    EXPECT_EQ(contentOf(engine.damagedCopy()), "no archive");
}

TEST_F(DatabaseFaults, DamageInWhileTheProgramRunsStartsAnEmptyTree)
{
    ASSERT_EQ(addElsewhere(QStringLiteral("a")), QString());
    Engine engine(parts(), Engine::AtEnd::Save);
    const QByteArray half = bytesInFile().left(bytesInFile().size() / 2);
    ASSERT_TRUE(writeFile(home->databaseFile(), half));
    EXPECT_EQ(engine.rootQuery()->numberOfChilds(), 0);
    EXPECT_EQ(log.filter(QStringLiteral("Database loading 2: Error on database opening InvalidArchive: ")).size(), 1);
    EXPECT_EQ(contentOf(engine.damagedCopy()), half);

    ASSERT_TRUE(QFile::remove(home->databaseFile()));
    ASSERT_EQ(add(engine, QStringLiteral("kept")), QString());
    ASSERT_TRUE(writeFile(home->databaseFile(), QByteArray()));
    EXPECT_EQ(engine.rootQuery()->numberOfChilds(), 1) << "an empty or missing file replaces no tree";
}

} // namespace
