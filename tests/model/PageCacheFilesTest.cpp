// Which files a query deletes, and when.

#include "model/ModelTestSupport.h"
#include "model/TreeLock.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <thread>

namespace quarry {

namespace {

/// root > group > query over a caches folder in which every node has a page cache.
class PageCacheFiles : public ::testing::Test {
protected:
    PageCacheFiles()
    {
        const auto services = std::make_shared<TreeServices>();
        services->cachesFolder = dir.filePath("Caches"_q);
        root->setServices(services);
        root->addChild(group);
        group->addChild(query);
        for (const QueryCorePtr& node : {root, group, query})
            makeFile(node->UUID() + "/1.qspagecache"_q);
    }
    [[nodiscard]] QString inCaches(const QString& name) const { return dir.filePath("Caches/"_q) + name; }
    [[nodiscard]] bool has(const QString& name) const { return QFile::exists(inCaches(name)); }
    [[nodiscard]] bool hasCache(const QueryCorePtr& node) const { return has(node->UUID()); }
    void makeFile(const QString& name) const
    {
        QFile file(inCaches(name));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly));
    }

    QTemporaryDir dir;
    QueryCorePtr root = QueryCore::initWithQueryFolder(QString());
    QueryCorePtr group = QueryCore::initWithQueryFolder("group"_q);
    QueryCorePtr query = queryWith({recordNamed("a"_q), recordNamed("b"_q).withRating(4)});
};

} // namespace

TEST_F(PageCacheFiles, RemoveDeletesTheCacheOfOneNode)
{
    group->remove();
    EXPECT_FALSE(hasCache(group));
    EXPECT_TRUE(hasCache(query));
    EXPECT_EQ(root->numberOfChilds(), 0);
    EXPECT_EQ(group->numberOfChilds(), 1);
}

TEST_F(PageCacheFiles, DeleteChildDeletesTheCachesOfASubtree)
{
    root->deleteChild(group);
    EXPECT_TRUE(hasCache(root));
    EXPECT_FALSE(hasCache(group) || hasCache(query));
    EXPECT_EQ(group->snapshot().parent, nullptr);
    EXPECT_EQ(group->numberOfChilds(), 0);
}

TEST_F(PageCacheFiles, RemoveResultsDropsResultsAndCache)
{
    query->setHidden(true, recordNamed("a"_q));
    query->removeResults();
    EXPECT_FALSE(hasCache(query));
    EXPECT_EQ(query->results(), std::nullopt);
    EXPECT_EQ(query->nbHiddenItems() + query->nbItems() + query->nbUnreadItem(), 0);
}

TEST_F(PageCacheFiles, NothingIsDeletedWhileTheLockIsHeld)
{
    {
        const TreeLock lock;
        group->delete_();
        EXPECT_TRUE(hasCache(query));
        TreeLock::afterwards([] { std::thread([] { const TreeLock free; }).join(); });
    }
    EXPECT_FALSE(hasCache(query));
}

TEST_F(PageCacheFiles, NamesThatLeadElsewhereDeleteNothing)
{
    makeFile("../precious/file"_q);
    for (const QString& uuid : {"../precious"_q, ".."_q, "."_q, ""_q, "./"_q + group->UUID()}) {
        QueryFields fields;
        fields._uuid = uuid;
        const QueryCorePtr hostile = QueryCore::fromArchive(fields);
        root->addChild(hostile);
        hostile->remove();
        EXPECT_TRUE(has("../precious/file"_q) && hasCache(group)) << uuid.toStdString();
    }
    ASSERT_TRUE(QDir(inCaches(query->UUID())).removeRecursively());
    ASSERT_TRUE(QFile::link(inCaches("../precious"_q), inCaches(query->UUID())));
    query->remove();
    EXPECT_TRUE(has("../precious/file"_q)) << "a link is removed, not followed";
    EXPECT_FALSE(hasCache(query));
}

TEST_F(PageCacheFiles, ARatingOfZeroDeletesTheThumbnail)
{
    const QString thumbnail = query->UUID() + "/b.jpg"_q;
    const ResultRecord rated = recordNamed("b"_q).withRating(4);
    const ResultRecord hostile = rated.withLinkUuid("../b"_q);
    ASSERT_TRUE(query->replaceResultsIfUnchanged(query->snapshot().generation, {rated, hostile}, Date(1)));
    makeFile(thumbnail);
    makeFile("b.jpg"_q);
    EXPECT_EQ(query->setRating(0, hostile)->rating(), 0);
    EXPECT_EQ(query->setRating(3, rated)->rating(), 3);
    EXPECT_TRUE(has(thumbnail));
    EXPECT_EQ(query->setRating(0, query->results()->first())->rating(), 0);
    EXPECT_FALSE(has(thumbnail));
    EXPECT_TRUE(has("b.jpg"_q));
}

} // namespace quarry
