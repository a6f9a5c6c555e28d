#pragma once

#include <QString>

namespace quarry {

/// Deletes a query's sub-folder of the caches folder, after the tree lock is let go. Errors are ignored.
///
/// The names come out of a file that anyone may have written: nothing is deleted when the caches folder is empty or
/// when a name is anything but a plain file name, and a symbolic link is removed, not followed.
void removeQueryCache(const QString& cachesFolder, const QString& queryUuid);

/// The same for the thumbnail of one result in that sub-folder: its link UUID with the extension "jpg".
void removeThumbnail(const QString& cachesFolder, const QString& queryUuid, const QString& linkUuid);

} // namespace quarry
