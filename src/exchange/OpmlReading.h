#pragma once

#include "exchange/ImportedNode.h"

#include <QByteArray>

namespace quarry {

/// Reads the outlines of an OPML file. Those with attributes of the product's own namespace come back as they were;
/// of others, one that holds outlines is a folder, and any other a plain query for its text. Faults name the line.
[[nodiscard]] ImportedForest readOpml(const QByteArray& bytes);

} // namespace quarry
