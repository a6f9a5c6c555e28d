#pragma once

#include <QString>
#include <QStringList>

namespace quarry {

/// Removes temporary files of FileStore with one of these prefixes that a program which was killed left in the folder:
/// those that nobody has written to for an hour. Whatever else lies there is left alone.
void removeLeftovers(const QString& folder, const QStringList& temporaryPrefixes);

} // namespace quarry
