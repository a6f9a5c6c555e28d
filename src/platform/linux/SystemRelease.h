#pragma once

#include <QByteArray>

namespace quarry {

/// The version number in the text of a release file ("os-release"), as operatingSystemVersion() gives it.
[[nodiscard]] int versionInRelease(const QByteArray& release);

} // namespace quarry
