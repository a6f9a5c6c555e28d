#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace quarry {

/// The product's texts by key, from "LANGUAGE.lproj/Localizable.strings" in a Resources folder: the user's
/// language where there is a table for it, English for what that one lacks. A plain value.
class StringTable final {
public:
    /// Without texts: every key yields itself.
    StringTable() = default;
    /// The table for the first of the languages that the folder has: names such as "fr_FR.UTF-8", "fr" or "C".
    StringTable(const QString& resourcesFolder, const QStringList& languages, const QString& name = defaultName());
    /// For the running program: its bundle's Resources, the languages of its environment.
    [[nodiscard]] static StringTable ofProgram(const QString& name = defaultName());

    /// A missing text yields its key.
    [[nodiscard]] QString text(const QString& key) const;
    [[nodiscard]] bool contains(const QString& key) const { return _texts.contains(key); }

    [[nodiscard]] static QString defaultName() { return QStringLiteral("Localizable"); }

private:
    void add(const QString& file);

    QHash<QString, QString> _texts;
};

/// The languages that LANGUAGE, LC_ALL, LC_MESSAGES and LANG ask for, most wanted first.
[[nodiscard]] QStringList languagesOfEnvironment();

} // namespace quarry
