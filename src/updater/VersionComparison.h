#pragma once

#include <QStringView>

namespace quarry {

/// Whether the remote version is newer than the local one. Versions are compared as numbers with their points left out,
/// on purpose: 1.10 (110) is not newer than 1.9.1 (191). A "b" begins a beta part: a release is newer than the betas of
/// its number; of two betas of one number the greater wins. A beta part longer than six characters, a date stamp with a
/// letter, ends with that letter, which decides between equal stamps.
[[nodiscard]] bool isNewerVersion(QStringView remote, QStringView local);

} // namespace quarry
