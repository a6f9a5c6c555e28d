// The page cache's files against bytes of another writer of the format, both ways.

#include "engines/PageCache.h"

#include "archive/SmallArchive.h"
#include "support/ArchiveJson.h"
#include "support/TemporaryHome.h"
#include "text/Data.h"

#include <QDir>

#include <gtest/gtest.h>

namespace quarry {
namespace {

using test::ArchiveJson;
using test::goldenFile;

const Date Started(412345678.75);

class GoldenPageCache : public ::testing::Test {
protected:
    [[nodiscard]] QString folderOf(const QString& uuid) const { return home->queryCacheFolder(uuid) + u'/'; }
    [[nodiscard]] static QString address(const QJsonObject& index, const QString& name)
    {
        const QJsonObject names = index[u"cacheKey"].toObject();
        for (auto entry = names.begin(); entry != names.end(); ++entry) {
            if (entry.value() == name)
                return entry.key();
        }
        return {};
    }

    test::TemporaryHome home;
    DiskFileStore files;
    const QJsonObject golden = test::goldenJson("cache.json");
    const QJsonObject index = golden[u"index"].toObject();
    const QJsonObject pages = golden[u"pages"].toObject();
};

TEST_F(GoldenPageCache, IsReadAsItsWriterMeantIt)
{
    const QString folder = folderOf(u"Q"_qs);
    ASSERT_TRUE(QDir().mkpath(folder));
    for (const QString& name : QDir(QStringLiteral(QUARRY_TEST_DATA "/golden/cache")).entryList(QDir::Files))
        ASSERT_TRUE(test::writeFile(folder + name, goldenFile(("cache/" + name.toUtf8()).constData())));
    const PageCache cache(files, home->cachesFolder(), u"Q"_qs, Started.plusSeconds(6 * 3600));
    ASSERT_EQ(pages.size(), 2);
    for (const QString& name : pages.keys()) {
        const auto page = cache.page(address(index, name));
        ASSERT_TRUE(page) << qPrintable(name);
        EXPECT_EQ(page->text, pages[name][u"webSouceKey"].toString());
        EXPECT_EQ(qint64(page->encoding), pages[name][u"webEncodingKey"].toInteger());
    }
    EXPECT_FALSE(cache.page(u"http://search.example.com/"_qs));

    const PageCache late(files, home->cachesFolder(), u"Q"_qs, Started.plusSeconds(6 * 3600 + 1));
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList());
}

TEST_F(GoldenPageCache, IsWrittenLikeTheOtherWritersFiles)
{
    PageCache cache(files, home->cachesFolder(), u"Q"_qs, Started);
    for (const QString& name : pages.keys())
        cache.store(address(index, name), {pages[name][u"webSouceKey"].toString(),
                                           EncodingNumber(pages[name][u"webEncodingKey"].toInteger())});
    cache.close(Started);
    // The same but for the pages' names, which are made anew.
    const QByteArray indexBytes = test::contentOf(folderOf(u"Q"_qs) + u"Cache.qsidx"_qs);
    const PlistValue names = unarchivedValue(indexBytes).value()[u"cacheKey"_qs];
    QByteArray ours = QJsonDocument(ArchiveJson::of(indexBytes).toObject()).toJson();
    for (const QString& name : pages.keys())
        ours.replace(names[address(index, name)].text().value().toUtf8(), name.toUtf8());
    EXPECT_TRUE(ours.contains(pages.keys().first().toUtf8()));
    EXPECT_EQ(ours, QJsonDocument(ArchiveJson::of(goldenFile("cache/Cache.qsidx")).toObject()).toJson());
    for (const QString& name : pages.keys()) {
        const QByteArray their = goldenFile(("cache/" + name.toUtf8() + ".qspagecache").constData());
        const QString ourName = names[address(index, name)].text().value();
        const QByteArray our = test::contentOf(folderOf(u"Q"_qs) + ourName + u".qspagecache"_qs);
        EXPECT_EQ(test::difference(ArchiveJson::of(decompressedData(our).value()),
                                   ArchiveJson::of(decompressedData(their).value())),
                  QString());
    }
}

} // namespace
} // namespace quarry
