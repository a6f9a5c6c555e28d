#pragma once

#include "engines/SearchService.h"

#include <QIcon>
#include <QString>

namespace quarry {

/// A small picture for a search service: its letter on a colour of its own.
[[nodiscard]] QIcon serviceIcon(SearchService service);
/// The same by the identifier in records. Null for an unknown one.
[[nodiscard]] QIcon serviceIcon(const QString& engineId);

} // namespace quarry
