#pragma once

#include "archive/PropertyList.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quarry {

// Keyed archives of plain values (texts, numbers, dates, data, lists, dictionaries): the page cache's index and pages.

/// The keyed archive whose root object is the value.
[[nodiscard]] QByteArray archivedData(const PlistValue& root);

/// The root object of a keyed archive, as plain values. None, and a reason, for a damaged file and for anything else.
/// Addresses read as their text; objects of other classes read as null.
[[nodiscard]] std::optional<PlistValue> unarchivedValue(const QByteArray& bytes, QString* reason = nullptr);

} // namespace quarry
