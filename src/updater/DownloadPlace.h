#pragma once

#include "text/Url.h"

#include <QString>

namespace quarry {

/// The name of a download: the last component of the address's path, escapes undone; a name of the product's own where
/// that is no plain file name.
[[nodiscard]] QString downloadFileName(const Url& address);

/// The name of the folder that an image is mounted in: the image's file name without its extension.
[[nodiscard]] QString mountFolderName(const QString& imagePath);

} // namespace quarry
