#include "archive/PropertyList.h"
#include "archive/StringTable.h"
#include "support/QtPrinting.h"
#include "text/CSRegex.h"
#include "text/LocalisedFormat.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace quarry;
using namespace Qt::Literals::StringLiterals;

namespace {

QDir resources()
{
    return QDir(QStringLiteral(QUARRY_BUNDLE_DIR "/Resources"));
}

QStringList languages()
{
    return resources().entryList({u"*.lproj"_s}, QDir::Dirs);
}

/// Key and text of "LANGUAGE.lproj/TABLE".
QMap<QString, QString> tableOf(const QString& language, const QString& table)
{
    QFile file(resources().filePath(language + u'/' + table));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    const PlistValue::Dictionary content =
        readPropertyList(file.readAll()).value_or(PlistValue()).dictionary().value_or(PlistValue::Dictionary());
    QMap<QString, QString> texts;
    for (auto entry = content.begin(); entry != content.end(); ++entry)
        texts.insert(entry.key(), entry.value().text().value_or(QString()));
    return texts;
}

/// Every text in the sources and the layouts that has the form of a key, and the messages that are keys themselves.
QStringList keysInUse()
{
    static const QRegularExpression literal(u"[\">]((?:[0-9]{3}|Updater_1\\.0)_[^\"%<]+)[\"<]"_s);
    QStringList keys;
    QDirIterator sources(QStringLiteral(QUARRY_TEST_DATA "/../../src"), {u"*.cpp"_s, u"*.h"_s, u"*.ui"_s}, QDir::Files,
                         QDirIterator::Subdirectories);
    while (sources.hasNext()) {
        QFile source(sources.next());
        EXPECT_TRUE(source.open(QIODevice::ReadOnly));
        const QString code = QString::fromUtf8(source.readAll());
        for (auto match = literal.globalMatch(code); match.hasNext();)
            keys.append(match.next().captured(1));
    }
    for (int code = 1; code <= int(RegexError::IllegalSequence); ++code) {
        if (const QString message = CSRegex::messageForCode(code); !message.isEmpty())
            keys.append(message);
    }
    return keys;
}

TEST(Localisation, EveryKeyInTheSourcesHasATextInEveryLanguage)
{
    const QStringList keys = keysInUse();
    EXPECT_GE(keys.size(), 7) << "the services' languages and the placeholders at least";
    for (const QString& language : languages()) {
        QMap<QString, QString> texts;
        for (const QString& table : QDir(resources().filePath(language)).entryList({u"*.strings"_s}))
            texts.insert(tableOf(language, table));
        for (const QString& key : keys)
            EXPECT_TRUE(texts.contains(key)) << language.toStdString() << " lacks " << key.toStdString();
    }
}

TEST(Localisation, TablesOfAllLanguagesHaveTheSameKeysAndPlaceholders)
{
    const QString english = u"English.lproj"_s;
    EXPECT_EQ(languages(), (QStringList{english, u"French.lproj"_s, u"German.lproj"_s}));
    const QStringList tables = QDir(resources().filePath(english)).entryList({u"*.strings"_s});
    ASSERT_TRUE(tables.contains(u"Localizable.strings"_s));
    for (const QString& name : tables) {
        const QMap<QString, QString> expected = tableOf(english, name);
        for (const QString& language : languages()) {
            const QMap<QString, QString> table = tableOf(language, name);
            EXPECT_EQ(table.keys(), expected.keys()) << language.toStdString() << ' ' << name.toStdString();
            for (auto text = table.begin(); text != table.end(); ++text) {
                EXPECT_EQ(text->isEmpty(), expected.value(text.key()).isEmpty()) << text.key().toStdString();
                EXPECT_EQ(placeholdersOf(*text), placeholdersOf(expected.value(text.key())))
                    << text.key().toStdString();
            }
        }
    }
}

TEST(Localisation, FaultsThatAreKeysAreSaidLikeThatBelowTheWindow)
{
    QByteArray code;
    QDirIterator sources(QStringLiteral(QUARRY_TEST_DATA "/../../src"), {u"*.cpp"_s}, QDir::Files,
                         QDirIterator::Subdirectories);
    while (sources.hasNext()) {
        QFile source(sources.next());
        EXPECT_TRUE(source.open(QIODevice::ReadOnly));
        code += source.readAll();
    }
    const QMap<QString, QString> table = tableOf(u"English.lproj"_s, u"Window.strings"_s);
    for (auto text = table.begin(); text != table.end(); ++text) {
        if (text.key().at(0).isDigit())
            continue;
        EXPECT_EQ(*text, text.key());
        EXPECT_TRUE(code.contains('"' + text.key().toUtf8() + '"')) << text.key().toStdString();
    }
}

TEST(Localisation, MenuTextsHaveTheFormThatTheAgentReliesOn)
{
    for (const QString& locale : {u"en_GB.UTF-8"_s, u"fr_FR"_s, u"de"_s}) {
        const StringTable texts(resources().path(), {locale});
        const QString countdown = texts.text(u"100_Update menu string format"_s);
        EXPECT_EQ(placeholdersOf(countdown), (QStringList{u"1@"_s, u"2@"_s}));
        EXPECT_EQ(texts.text(u"100_Not determinated"_s).toInt(), 0) << "its number is 0";
        for (const char* key :
             {"113_Template string for queries result", "113_Template string for queries result Singular form"}) {
            const QString line = texts.text(QLatin1String(key));
            EXPECT_TRUE(line.startsWith(u'\n') && line.endsWith(QLatin1String("%@"))) << line.toStdString();
            EXPECT_EQ(placeholdersOf(line), (QStringList{u"1d"_s, u"2@"_s}));
        }
    }
}

} // namespace
