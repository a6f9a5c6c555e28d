#pragma once

#include <QString>

namespace quarry {

/// Writes an ISO 9660 image, with long names and links, that holds a folder under its own name: what a new version is
/// delivered in. An image that is there is replaced once the new one is complete. Returns one line for a person on
/// failure, else an empty text.
[[nodiscard]] QString writeImage(const QString& folder, const QString& image);

} // namespace quarry
