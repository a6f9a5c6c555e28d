#pragma once

#include <QString>

namespace quarry {

/// Makes a folder that only this user can look into (mode 0700), in a folder that everybody may write to. Whatever is
/// there already under that name is refused. Returns one line for a person on failure, else an empty text.
[[nodiscard]] QString makePrivateFolder(const QString& path);

/// Whether that is a folder, and no link to one, that belongs to this user and that nobody else may write to.
[[nodiscard]] bool isPrivateFolder(const QString& path);

} // namespace quarry
