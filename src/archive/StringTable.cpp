#include "archive/StringTable.h"

#include "archive/PropertyList.h"
#include "platform/Bundle.h"
#include "platform/SystemLog.h"

#include <QFile>

#include <array>

namespace quarry {

namespace {

struct Language {
    QLatin1String code;
    QLatin1String folder;
};

/// The folders are named in English, not by code.
constexpr std::array<Language, 3> Languages{{
    {QLatin1String("en"), QLatin1String("English.lproj")},
    {QLatin1String("fr"), QLatin1String("French.lproj")},
    {QLatin1String("de"), QLatin1String("German.lproj")},
}};

/// The folder for a name such as "fr_FR.UTF-8"; empty for a language the product has no texts in.
QString folderForLanguage(const QString& language)
{
    qsizetype length = 0;
    while (length < language.size() && language[length].isLetter())
        ++length;
    const QString code = language.left(length).toLower();
    // The locales "C" and "POSIX" speak English.
    if (code == QLatin1String("c") || code == QLatin1String("posix"))
        return Languages[0].folder;
    for (const Language& known : Languages) {
        if (code == known.code)
            return known.folder;
    }
    return {};
}

} // namespace

StringTable::StringTable(const QString& resourcesFolder, const QStringList& languages, const QString& name)
{
    const QString separator = QStringLiteral("/");
    const auto fileIn = [&](const QString& folder) {
        return resourcesFolder + separator + folder + separator + name + QStringLiteral(".strings");
    };
    add(fileIn(Languages[0].folder));
    for (const QString& language : languages) {
        const QString folder = folderForLanguage(language);
        if (folder.isEmpty() || !QFile::exists(fileIn(folder)))
            continue;
        if (folder != Languages[0].folder)
            add(fileIn(folder));
        return;
    }
}

StringTable StringTable::ofProgram(const QString& name)
{
    return StringTable(Bundle::ofProgram().resourcesFolder(), languagesOfEnvironment(), name);
}

QString StringTable::text(const QString& key) const
{
    return _texts.value(key, key);
}

void StringTable::add(const QString& file)
{
    QFile table(file);
    if (!table.open(QIODevice::ReadOnly)) {
        debugLog(QStringLiteral("no texts in %1: %2").arg(file, table.errorString()));
        return;
    }
    QString reason;
    const std::optional<PlistValue> content = readPropertyList(table.readAll(), &reason);
    if (!content || !content->dictionary()) {
        systemLog(QStringLiteral("%1 is no table of texts: %2").arg(file, reason));
        return;
    }
    const PlistValue::Dictionary texts = *content->dictionary();
    for (auto entry = texts.begin(); entry != texts.end(); ++entry) {
        if (const std::optional<QString> text = entry.value().text())
            _texts.insert(entry.key(), *text);
    }
}

QStringList languagesOfEnvironment()
{
    QString locale;
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        locale = qEnvironmentVariable(variable);
        if (!locale.isEmpty())
            break;
    }
    // In the locale "C" programs are to speak English, whatever LANGUAGE lists.
    const bool isPlain = locale.isEmpty() || locale == QLatin1String("C") || locale == QLatin1String("POSIX") ||
                         locale.startsWith(QLatin1String("C."));
    QStringList languages;
    if (!isPlain)
        languages = qEnvironmentVariable("LANGUAGE").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    languages.append(locale.isEmpty() ? QStringLiteral("C") : locale);
    return languages;
}

} // namespace quarry
