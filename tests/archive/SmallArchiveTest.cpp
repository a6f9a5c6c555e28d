#include "archive/SmallArchive.h"

#include <QFile>

#include <gtest/gtest.h>

namespace quarry {
namespace {

using Dictionary = PlistValue::Dictionary;
using List = PlistValue::List;

QByteArray golden(const char* name)
{
    QFile file(QStringLiteral(QUARRY_TEST_DATA "/golden/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(SmallArchive, ReadsThePageCacheIndexOfAnotherWriter)
{
    const auto index = unarchivedValue(golden("cache/Cache.qsidx"));
    ASSERT_TRUE(index);
    EXPECT_EQ((*index)[QStringLiteral("cacheDateKey")].real(), 412345678.75);
    EXPECT_EQ((*index)[QStringLiteral("cacheKey")],
              PlistValue(Dictionary{
                  {QStringLiteral("http://search.example.com/search?q=rolling+stock&start=0"),
                   QStringLiteral("71717171-0A1B-4C2D-8E3F-000000000071")},
                  {QStringLiteral("http://search.example.com/search?q=%E6%97%A5%26x&start=10"),
                   QStringLiteral("72727272-0A1B-4C2D-8E3F-000000000072")},
              }));
}

TEST(SmallArchive, WhatIsWrittenReadsBackTheSame)
{
    const PlistValue cases[] = {
        Dictionary{{QStringLiteral("webEncodingKey"), qint64(0x80000a01)},
                   {QStringLiteral("webSouceKey"), QString(300000, u'x') + QStringLiteral("é日🚂")}},
        Dictionary{{QStringLiteral("x"), QStringLiteral("x")}, {QStringLiteral("none"), PlistValue()}},
        List{qint64(-1), qint64(255), qint64(65536), qint64(5000000000), true, false, 2.5, Date(412345678.25),
             QByteArray("\0\1\xff", 3), List{}, Dictionary{}, QStringLiteral("same"), QStringLiteral("same")},
        List(70000, List{QStringLiteral("more objects than two bytes count")}),
        QStringLiteral("a text alone"),
    };
    for (const PlistValue& value : cases) {
        QString reason;
        const auto read = unarchivedValue(archivedData(value), &reason);
        ASSERT_TRUE(read) << reason.toStdString();
        EXPECT_EQ(*read, value);
    }
}

} // namespace
} // namespace quarry
