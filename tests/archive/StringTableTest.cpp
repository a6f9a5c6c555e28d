#include "archive/StringTable.h"

#include "archive/PropertyList.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
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

TEST(StringTable, EveryKeyInTheSourcesHasATextInEveryLanguage)
{
    const QRegularExpression literal(QStringLiteral("\"((?:[0-9]{3}|Updater_1\\.0)_[^\"%]+)\""));
    QStringList keys;
    QDirIterator sources(QStringLiteral(QUARRY_TEST_DATA "/../../src"),
                         {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files, QDirIterator::Subdirectories);
    while (sources.hasNext()) {
        QFile source(sources.next());
        ASSERT_TRUE(source.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(source.readAll());
        for (auto match = literal.globalMatch(text); match.hasNext();)
            keys.append(match.next().captured(1));
    }
    EXPECT_GE(keys.size(), 7) << "the services' languages and the placeholders at least";

    const QDir resources(QStringLiteral(QUARRY_BUNDLE_DIR "/Resources"));
    const QStringList languages = resources.entryList({QStringLiteral("*.lproj")}, QDir::Dirs);
    EXPECT_FALSE(languages.isEmpty());
    for (const QString& language : languages) {
        QFile file(resources.filePath(language + QStringLiteral("/Localizable.strings")));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
        const PlistValue table = readPropertyList(file.readAll()).value_or(PlistValue());
        for (const QString& key : keys)
            EXPECT_TRUE(table[key].text()) << language.toStdString() << " lacks " << key.toStdString();
    }
}

} // namespace
