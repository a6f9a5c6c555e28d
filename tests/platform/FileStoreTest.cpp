#include "platform/FileStore.h"

#include "platform/DamagedFile.h"
#include "platform/Leftovers.h"
#include "support/QtPrinting.h"
#include "support/TemporaryHome.h"

#include <QProcess>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

using namespace quarry;

namespace {

class FileStoreTest : public ::testing::Test {
protected:
    QString path(const char* name = "file") const { return folder.filePath(QString::fromUtf8(name)); }
    QStringList names() const
    {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    FileStore::WriteResult replace(const QByteArray& bytes)
    {
        return store.replace(path(), QStringLiteral(".dat"), 0660, bytes);
    }

    QTemporaryDir folder;
    DiskFileStore store;
};

TEST_F(FileStoreTest, ReplacesAFileAndTellsItsStamp)
{
    const mode_t old = ::umask(077);
    const auto first = replace("one");
    ::umask(old);
    ASSERT_TRUE(first.ok()) << first.error.toStdString();
    EXPECT_EQ(store.stamp(path()), first.stamp);
    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(path()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0660U) << "whatever the process's mask";

    const auto second = replace("two");
    EXPECT_EQ(store.read(path()).bytes, "two");
    EXPECT_EQ(store.read(path()).stamp, second.stamp);
    EXPECT_EQ(names(), QStringList(QStringLiteral("file")));
}

TEST_F(FileStoreTest, TwoVersionsNeverShareADate)
{
    // In memory, many replacements fall within one step of the kernel's file times.
    QTemporaryDir memory(QStringLiteral("/dev/shm/quarry-XXXXXX"));
    const QString file = (memory.isValid() ? memory : folder).filePath(QStringLiteral("file"));
    std::optional<FileStamp> previous;
    for (int i = 0; i < 100; ++i) {
        const auto written = store.replace(file, QStringLiteral(".dat"), 0660, QByteArray("x"));
        ASSERT_TRUE(written.ok());
        if (previous) {
            EXPECT_GT(written.stamp.modifiedNanoseconds, previous->modifiedNanoseconds);
        }
        EXPECT_EQ(store.stamp(file), written.stamp);
        previous = written.stamp;
    }
}

TEST_F(FileStoreTest, LargeAndSmallPiecesArriveInOrder)
{
    QByteArray expected;
    const auto written = store.replace(path(), QStringLiteral(".dat"), 0600, [&](ByteSink& sink) {
        for (const int size : {1, 300000, 7, 262144, 0, 5, 1000000}) {
            const QByteArray piece(size, char('a' + expected.size() % 26));
            expected += piece;
            if (!sink.append(piece.constData(), static_cast<std::size_t>(size)))
                return false;
        }
        return true;
    });
    EXPECT_TRUE(written.ok());
    EXPECT_EQ(store.read(path()).bytes, expected);
}

TEST_F(FileStoreTest, AFailureLeavesTheOldFileAndNoTemporary)
{
    ASSERT_TRUE(replace("kept").ok());
    const auto unmade = store.replace(path(), QStringLiteral(".dat"), 0660,
                                      [](ByteSink& sink) { return sink.append("half", 4) && false; });
    EXPECT_FALSE(unmade.ok());

    QProcess child;
    child.start(QStringLiteral(PLATFORM_CHILD), {QStringLiteral("write"), path()});
    ASSERT_TRUE(child.waitForFinished(60000));
    EXPECT_EQ(child.exitCode(), 0);
    EXPECT_TRUE(child.readAllStandardOutput().contains(": File too large"));

    EXPECT_EQ(store.read(path()).bytes, "kept");
    EXPECT_EQ(names(), QStringList(QStringLiteral("file")));
    EXPECT_FALSE(store.replace(path("missing/file"), QStringLiteral(".dat"), 0660, QByteArray()).ok());
}

TEST_F(FileStoreTest, ALinkIsFollowedAndStays)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("elsewhere")));
    ASSERT_TRUE(store.replace(path("elsewhere/real"), QStringLiteral(".dat"), 0660, QByteArray("old")).ok());
    ASSERT_TRUE(QFile::link(QStringLiteral("elsewhere/real"), path()));
    const auto written = replace("new");
    ASSERT_TRUE(written.ok()) << written.error.toStdString();
    EXPECT_TRUE(QFileInfo(path()).isSymLink());
    EXPECT_EQ(store.read(path("elsewhere/real")).bytes, "new");
    EXPECT_EQ(store.stamp(path()), written.stamp);
    EXPECT_EQ(names().size(), 2);

    ASSERT_TRUE(QFile::remove(path("elsewhere/real")));
    const auto dangling = replace("lost");
    EXPECT_TRUE(dangling.error.contains(QLatin1String("No such file"))) << dangling.error.toStdString();
    EXPECT_TRUE(QFileInfo(path()).isSymLink()) << "what it leads to may be on a disk that is away for now";
}

TEST_F(FileStoreTest, OldTemporariesAreRemovedAndNothingElse)
{
    const QStringList all = {QStringLiteral(".s0123456789abcdef"), QStringLiteral(".s0123456789abcdee"),
                             QStringLiteral(".s0123456789abcde"),  QStringLiteral(".s0123456789abcdeX"),
                             QStringLiteral(".t0123456789abcdef"), QStringLiteral(".settings")};
    for (const QString& name : all) {
        ASSERT_TRUE(test::writeFile(folder.filePath(name), "x"));
        const std::filesystem::path file = folder.filePath(name).toStdString();
        if (name != all[1])
            std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) - std::chrono::hours(2));
    }
    removeLeftovers(folder.path(), {QStringLiteral(".s")});
    QStringList left = names();
    left.sort();
    QStringList expected = all.mid(1);
    expected.sort();
    EXPECT_EQ(left, expected);

    // What a write leaves behind is named so that it can be told.
    QString temporary;
    ASSERT_TRUE(store
                    .replace(path(), QStringLiteral(".s"), 0600,
                             [&](ByteSink& sink) {
                                 for (const QString& name : names())
                                     temporary = left.contains(name) ? temporary : name;
                                 return sink.append("x", 1);
                             })
                    .ok());
    ASSERT_TRUE(test::writeFile(folder.filePath(temporary), "x"));
    const std::filesystem::path file = folder.filePath(temporary).toStdString();
    std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) - std::chrono::hours(2));
    removeLeftovers(folder.path(), {QStringLiteral(".s")});
    EXPECT_FALSE(QFile::exists(folder.filePath(temporary))) << temporary.toStdString();
}

TEST_F(FileStoreTest, ReadingTellsMissingFromUnreadable)
{
    const auto missing = store.read(path());
    EXPECT_TRUE(missing.error.isEmpty());
    EXPECT_FALSE(missing.stamp);
    EXPECT_FALSE(store.stamp(path()));

    EXPECT_FALSE(store.read(folder.path()).error.isEmpty()) << "a folder";
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    EXPECT_FALSE(store.read(path("pipe")).error.isEmpty()) << "a pipe must not be waited for";
}

TEST_F(FileStoreTest, ADamagedFileIsCopiedAsideOnceAndNeverOverACopy)
{
    const Date date = Date::fromUnixSeconds(1795232730); // 2026-11-21 03:45:30 UTC
    const auto copy = [&](const QByteArray& bytes) { return copyDamagedFileAside(store, path("D.x"), bytes, date); };
    const DamagedCopy first = copy("one");
    EXPECT_TRUE(first.path.endsWith(QLatin1String("/D.damaged-2026-11-21-034530.x"))) << first.path.toStdString();
    EXPECT_EQ(copy("one").path, first.path);
    const DamagedCopy second = copy("two");
    EXPECT_TRUE(second.path.endsWith(QLatin1String("/D.damaged-2026-11-21-034530-2.x")));
    EXPECT_EQ(store.read(first.path).bytes, "one");
    EXPECT_EQ(store.read(second.path).bytes, "two");
    EXPECT_EQ(names().size(), 2);
}

} // namespace
