#include "gateway/RunningGateway.h"
#include "support/Gzip.h"

#include <QDateTime>

#include <atomic>
#include <thread>
#include <utility>

namespace quarry {

namespace {

class FolderFreshness : public testing::Test {
protected:
    [[nodiscard]] QString found() const { return gateway.found("query=walnut"); }
    void rename(const char* from, const char* to) const
    {
        ASSERT_TRUE(QFile::rename(gateway.path(QString::fromUtf8(from)), gateway.path(QString::fromUtf8(to))));
    }
    void write(const char* name, const QByteArray& bytes) const { gateway.write(QString::fromUtf8(name), bytes); }

    RunningGateway gateway;
};

TEST_F(FolderFreshness, TheNextSearchSeesWhateverHappenedToAFile)
{
    write("first.txt", "walnut");
    gateway.start();
    EXPECT_EQ(found(), QStringLiteral("first.txt"));
    write("second.txt", "a walnut more");
    EXPECT_EQ(found(), QStringLiteral("first.txt second.txt"));
    // Same length, same file, within the file system's clock tick.
    write("first.txt", "almond");
    EXPECT_EQ(found(), QStringLiteral("second.txt"));
    write("first.txt", "walnut");
    EXPECT_EQ(found(), QStringLiteral("first.txt second.txt"));
    rename("second.txt", "third.txt");
    EXPECT_EQ(found(), QStringLiteral("first.txt third.txt"));
    ASSERT_TRUE(QFile::remove(gateway.path(QStringLiteral("first.txt"))));
    EXPECT_EQ(found(), QStringLiteral("third.txt"));
    write("third.txt", QByteArray("walnut\0binary", 13));
    EXPECT_EQ(found(), QString());
}

TEST_F(FolderFreshness, TheNextSearchSeesWhateverHappenedToAFolder)
{
    gateway.start();
    EXPECT_EQ(found(), QString());
    write("new/deep/tree/a.txt", "walnut");
    EXPECT_EQ(found(), QStringLiteral("new/deep/tree/a.txt"));
    rename("new/deep", "new/renamed");
    EXPECT_EQ(found(), QStringLiteral("new/renamed/tree/a.txt"));
    write("new/renamed/tree/b.txt", "walnut"); // The watch has to go by the new name.
    EXPECT_EQ(found(), QStringLiteral("new/renamed/tree/a.txt new/renamed/tree/b.txt"));
    // Another folder takes the place of the old one.
    rename("new/renamed", "new/aside");
    write("new/renamed/tree/c.txt", "walnut");
    EXPECT_EQ(found(), QStringLiteral("new/aside/tree/a.txt new/aside/tree/b.txt new/renamed/tree/c.txt"));
    ASSERT_TRUE(QDir(gateway.path(QStringLiteral("new"))).removeRecursively());
    EXPECT_EQ(found(), QString());
}

TEST_F(FolderFreshness, CompressedDocumentsGoByTheNameOfWhatTheyHold)
{
    write("changelog.gz", test::gzip("walnut (1.0) stable\n\n  * First release.\n"));
    write("twice.txt", "walnut, the newer text");
    write("twice.txt.gz", test::gzip("walnut, a copy"));
    write("broken.gz", "walnut, not compressed at all");
    write("bomb.gz", test::gzip(QByteArray(qsizetype(64) * 1024 * 1024, 'x')));
    gateway.start();
    EXPECT_EQ(found(), QStringLiteral("changelog twice.txt"));
    EXPECT_TRUE(gateway.get("/doc/changelog").body.contains("* First release."));
    EXPECT_TRUE(gateway.get("/doc/twice.txt").body.contains("newer"));
    EXPECT_LT(gateway.get("/doc/bomb").body.size(), 5 * 1024 * 1024);
    // Without the plain one the compressed one is a document of its own.
    ASSERT_TRUE(QFile::remove(gateway.path(QStringLiteral("twice.txt"))));
    EXPECT_EQ(found(), QStringLiteral("changelog twice.txt"));
    EXPECT_TRUE(gateway.get("/doc/twice.txt").body.contains("a copy"));
}

TEST_F(FolderFreshness, SearchesAndChangesMayComeTogether)
{
    gateway.start();
    constexpr int clients = 3;
    constexpr int rounds = 20;
    std::atomic<int> answered = 0;
    std::vector<std::thread> threads;
    threads.reserve(clients);
    for (int i = 0; i < clients; ++i) {
        threads.emplace_back([this, &answered] {
            for (int round = 0; round < rounds; ++round) {
                answered += gateway.get("/search?q=walnut").status == 200 ? 1 : 0;
                answered += gateway.get("/doc/0.txt").status != 0 ? 1 : 0;
            }
        });
    }
    for (int i = 0; i < rounds; ++i)
        gateway.write(QString::number(i % 4) + QStringLiteral(".txt"), "walnut " + QByteArray::number(i));
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(answered, 2 * clients * rounds);
    EXPECT_EQ(found(), QStringLiteral("0.txt 1.txt 2.txt 3.txt"));
}

TEST(IndexFile, IsTakenUpAgainAndReadsOnlyWhatChanged)
{
    QTemporaryDir folder;
    RunningGateway gateway(folder.filePath(QStringLiteral("index")));
    int filesRead = 0;
    gateway.setProgress([&filesRead](std::int64_t) {
        ++filesRead;
        return true;
    });
    for (const char* name : {"a.txt", "b/b.txt", "b/c.txt"}) {
        gateway.write(QString::fromUtf8(name), "walnut");
        // Old enough for its date to tell every change.
        QFile file(gateway.path(QString::fromUtf8(name)));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::fromSecsSinceEpoch(1'000'000'000), QFileDevice::FileModificationTime));
    }
    gateway.start();
    EXPECT_EQ(std::exchange(filesRead, 0), 3);
    gateway.stop();
    gateway.write(QStringLiteral("b/b.txt"), "almond");
    ASSERT_TRUE(QFile::remove(gateway.path(QStringLiteral("a.txt"))));
    gateway.start();
    EXPECT_EQ(filesRead, 1);
    EXPECT_EQ(gateway.found("query=walnut"), QStringLiteral("b/c.txt"));
    EXPECT_EQ(gateway.found("query=almond"), QStringLiteral("b/b.txt"));
    EXPECT_EQ(gateway.find("query=site:b").join(u' '), QStringLiteral("b/b.txt b/c.txt")) << "newest first";
}

TEST(IndexFile, OfAnotherProgramIsLeftAlone)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("precious"));
    {
        SqliteDatabase other(file);
        other.run("CREATE TABLE precious(x); INSERT INTO precious VALUES(42)");
    }
    QString error;
    QTemporaryDir documents;
    EXPECT_FALSE(FolderSource::open({documents.path(), file, {}}, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("another program"))) << qPrintable(error);
    EXPECT_FALSE(FolderSource::open({folder.path(), file, {}}, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("lies among the documents"))) << qPrintable(error);
    EXPECT_TRUE(FolderSource::open({folder.path(), folder.filePath(QStringLiteral(".index")), {}}, &error))
        << qPrintable(error);
    EXPECT_EQ(SqliteDatabase(file).number("SELECT x FROM precious"), 42);
}

} // namespace

} // namespace quarry
