#pragma once

#include "updater/ImageUnpacker.h"

#include <QString>

namespace quarry {

// What the disk-image helper does. Both answer one line for a person on failure, an empty text otherwise.

/// Makes the folder, for this user only, and unpacks the image into it, read-only. A folder that is there already is
/// refused, whoever made it: its name can be foretold, and it stands where everybody may write. On failure the folder
/// is gone again.
[[nodiscard]] QString attachImage(const QString& image, const QString& folder, const ImageLimits& limits = {});

/// Removes a folder that attachImage made, with everything in it, and nothing else.
[[nodiscard]] QString detachImage(const QString& folder);

} // namespace quarry
