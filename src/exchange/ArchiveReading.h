#pragma once

#include "exchange/ImportedNode.h"

#include <QByteArray>

namespace quarry {

/// Reads a qsexport, or a database file. What lies in an unnamed root comes by itself, unless the root carries
/// something unknown: then it stays, as a folder of that name.
[[nodiscard]] ImportedForest readArchivedNodes(const QByteArray& bytes, const QString& nameOfUnnamed);

} // namespace quarry
