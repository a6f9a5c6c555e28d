#pragma once

#include <QIcon>
#include <QString>

namespace quarry {

/// A small picture for a search service, by its identifier in records: its letter on a colour of its own. Null for an
/// unknown one.
[[nodiscard]] QIcon serviceIcon(const QString& engineId);

} // namespace quarry
