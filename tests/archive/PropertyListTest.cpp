#include "archive/PropertyList.h"

#include <gtest/gtest.h>

namespace quarry {
namespace {

using Dictionary = PlistValue::Dictionary;
using List = PlistValue::List;

TEST(PropertyList, EveryTypeSurvivesTheXmlForm)
{
    const PlistValue everything = Dictionary{
        {QStringLiteral("text <&> \"é日🚂\""), QStringLiteral("  blanks, a <tag> & 日本語 🚂\n")},
        {QStringLiteral("empty"), QString(QLatin1String(""))},
        {QStringLiteral("yes"), true},
        {QStringLiteral("no"), false},
        {QStringLiteral("negative"), qint64(-70000)},
        {QStringLiteral("big"), qint64(5000000000)},
        {QStringLiteral("real"), 412345678.75},
        {QStringLiteral("precise"), 0.1},
        {QStringLiteral("date"), Date(412345678.0)},
        {QStringLiteral("before the epoch"), Date(-86400.0)},
        {QStringLiteral("data"), QByteArray("\x00\x01\xff", 3)},
        {QStringLiteral("list"), List{QStringLiteral("x"), 1, List{}, Dictionary{}}},
    };
    const QByteArray xml = writeXmlPropertyList(everything);
    const auto read = readPropertyList(xml);
    ASSERT_TRUE(read);
    for (auto entry = everything.dictionary()->cbegin(); entry != everything.dictionary()->cend(); ++entry)
        EXPECT_EQ((*read)[entry.key()], entry.value()) << entry.key().toStdString() << "\n" << xml.toStdString();
    EXPECT_EQ(read->dictionary()->size(), everything.dictionary()->size());
}

TEST(PropertyList, ATextThatTheFormCannotHoldIsNotWrittenInPart)
{
    EXPECT_TRUE(writeXmlPropertyList(PlistValue::Dictionary{{QStringLiteral("a"), QString(QChar(1))}}).isEmpty());
}

TEST(PropertyList, WhatIsNoPropertyListIsRefusedWithAReason)
{
    for (const char* bytes : {"", "hello", "bplist00", "<?xml version=\"1.0\"?><plist><dict><key>a</key>", "{}"}) {
        QString reason;
        EXPECT_FALSE(readPropertyList(QByteArray(bytes), &reason)) << bytes;
        EXPECT_FALSE(reason.isEmpty());
    }
}

} // namespace
} // namespace quarry
