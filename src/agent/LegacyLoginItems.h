#pragma once

#include "archive/PropertyListFile.h"
#include "platform/HomeFolder.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace quarry {

/// The older list of login items: the array "AutoLaunchedApplicationDictionary" in the preferences of "loginwindow".
/// On this platform those are the file "Library/Preferences/loginwindow.plist" of the home folder, which only a home
/// folder brought along from elsewhere has. Nothing here reads it at login; entries are found and taken out, and none
/// is made on a system as new as any that this runs on. Failures count as no match.
class LegacyLoginItems final {
public:
    /// `files` must outlive the object.
    LegacyLoginItems(const HomeFolder& home, FileStore& files);

    /// Whether the path of some entry contains the text, case aside.
    [[nodiscard]] bool contains(const QString& text) const;
    /// Takes out the first such entry.
    void removeFirst(const QString& text) const;
    void append(const QString& bundlePath) const;

private:
    void change(const std::function<void(PlistValue::List&)>& apply) const;

    PropertyListFile _file;
};

/// What stands in an entry for the file it means: here the bytes of its path.
[[nodiscard]] QByteArray aliasDataOfPath(const QString& path);
/// The path of an alias, at most 2048 bytes of it; null for empty bytes.
[[nodiscard]] QString pathOfAliasData(const QByteArray& alias);

} // namespace quarry
