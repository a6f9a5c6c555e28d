#pragma once

#include <QIcon>
#include <QString>

namespace quarry {

/// The picture of that name from a Resources folder, in every size it has there ("NAME-16.png"), read at once: a
/// program whose bundle is replaced while it runs keeps its pictures. Without files the icon is null, and the system
/// log says so.
[[nodiscard]] QIcon pictureNamed(const QString& name, const QString& resourcesFolder);

} // namespace quarry
