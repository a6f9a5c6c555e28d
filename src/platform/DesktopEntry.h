#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

namespace quarry {

/// The "[Desktop Entry]" group of a .desktop file, without its translations; values with their escapes resolved.
[[nodiscard]] QMap<QString, QString> readDesktopEntry(const QByteArray& bytes);

/// A .desktop file of those values, in that order.
[[nodiscard]] QByteArray writeDesktopEntry(const QList<std::pair<QString, QString>>& values);

/// The value of the key "Exec" that starts a program with those arguments, each taken literally.
[[nodiscard]] QString execValue(const QStringList& command);

/// The program and arguments in a value of the key "Exec"; field codes are dropped. Empty when its quotes do not match.
[[nodiscard]] QStringList commandOfExecValue(const QString& value);

} // namespace quarry
