#include "archive/StringTable.h"

#include "archive/PropertyList.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quarry;

namespace {

void writeTable(const QString& folder, const PlistValue::Dictionary& texts)
{
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile file(folder + QStringLiteral("/Localizable.strings"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(writeXmlPropertyList(texts));
}

TEST(StringTable, TakesTheUsersLanguageThenEnglishThenTheKey)
{
    QTemporaryDir folder;
    const QString a = QStringLiteral("a");
    const QString b = QStringLiteral("b");
    writeTable(folder.filePath(QStringLiteral("English.lproj")),
               {{a, QStringLiteral("one")}, {b, QStringLiteral("two")}});
    writeTable(folder.filePath(QStringLiteral("French.lproj")), {{a, QStringLiteral("un")}});
    const auto textOfA = [&](const QStringList& languages) { return StringTable(folder.path(), languages).text(a); };
    EXPECT_EQ(textOfA({QStringLiteral("fr_FR.UTF-8")}), QStringLiteral("un"));
    EXPECT_EQ(textOfA({QStringLiteral("ja_JP"), QStringLiteral("fr")}), QStringLiteral("un"));
    EXPECT_EQ(textOfA({QStringLiteral("en_GB"), QStringLiteral("fr")}), QStringLiteral("one"));
    EXPECT_EQ(textOfA({QStringLiteral("C")}), QStringLiteral("one"));
    EXPECT_EQ(textOfA({QStringLiteral("de_DE")}), QStringLiteral("one")) << "there is no German table here";
    const StringTable french(folder.path(), {QStringLiteral("fr")});
    EXPECT_EQ(french.text(b), QStringLiteral("two"));
    EXPECT_EQ(french.text(QStringLiteral("c")), QStringLiteral("c"));
    EXPECT_EQ(StringTable(QString(), {}).text(a), a);
}

} // namespace
