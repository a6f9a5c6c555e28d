#include "platform/FileLock.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

using namespace quarry;

namespace {

TEST(FileLock, KeepsOtherProcessesOutUntilItsHolderIsGone)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("lock"));
    QProcess child;
    child.start(QStringLiteral(PLATFORM_CHILD), {QStringLiteral("lock"), path});
    ASSERT_TRUE(child.waitForReadyRead(60000));
    ASSERT_EQ(child.readLine(), "held\n");

    EXPECT_FALSE(FileLock::tryAcquire(path));
    QString error;
    EXPECT_FALSE(FileLock::acquire(path, std::chrono::milliseconds(20), &error));
    EXPECT_TRUE(error.contains(QLatin1String("another program"))) << error.toStdString();

    child.kill();
    ASSERT_TRUE(child.waitForFinished(60000));
    EXPECT_TRUE(FileLock::acquire(path, std::chrono::seconds(60)));
}

TEST(FileLock, IsWaitedForAndPassedOn)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("lock"));
    auto lock = FileLock::tryAcquire(path);
    ASSERT_TRUE(lock);
    std::atomic<bool> taken{false};
    std::thread waiter([&] { taken = FileLock::acquire(path, std::chrono::seconds(60)).has_value(); });
    FileLock moved = std::move(*lock);
    lock.reset();
    EXPECT_FALSE(FileLock::tryAcquire(path)) << "the moved lock still holds";
    moved = FileLock();
    waiter.join();
    EXPECT_TRUE(taken);
}

TEST(FileLock, ARemovedLockFileLetsNoSecondHolderIn)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("lock"));
    auto orphan = FileLock::tryAcquire(path);
    ASSERT_TRUE(orphan);
    ASSERT_TRUE(QFile::remove(path));
    const auto holder = FileLock::tryAcquire(path);
    ASSERT_TRUE(holder) << "the removed file keeps nobody out";
    orphan.reset();
    EXPECT_FALSE(FileLock::tryAcquire(path)) << "the new file does";
    EXPECT_FALSE(FileLock::acquire(folder.filePath(QStringLiteral("no/lock")), std::chrono::seconds(60)));
}

} // namespace
