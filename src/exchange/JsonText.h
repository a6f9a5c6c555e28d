#pragma once

#include "platform/Date.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>

namespace quarry {

/// ISO 8601 in UTC; null for none and for the reference date, which means never.
[[nodiscard]] QJsonValue jsonTime(std::optional<Date> date);

/// The object as text, with every character escaped that could drive a terminal or turn its direction.
[[nodiscard]] QString jsonText(const QJsonObject& object); ///< Indented.
[[nodiscard]] QString jsonLine(const QJsonObject& object); ///< On one line.

} // namespace quarry
