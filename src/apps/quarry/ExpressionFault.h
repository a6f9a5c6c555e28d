#pragma once

#include <QString>

#include <optional>

namespace quarry {

/// Why a regular expression cannot be used, in lines for a person that point at the place; none when it can.
[[nodiscard]] std::optional<QString> expressionFault(const QString& pattern);

} // namespace quarry
