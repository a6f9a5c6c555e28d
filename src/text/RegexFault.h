#pragma once

#include <QString>

#include <optional>

namespace quarry {

/// Why a regular expression cannot be used, and where.
struct RegexFault {
    QString reason;       ///< For a person, localised as CSRegex does; may be empty.
    qsizetype place = -1; ///< The character at fault; the expression's size where something is missing at its end. -1
                          ///< when it was not looked for.
};

/// None when the expression compiles (an empty one does not).
[[nodiscard]] std::optional<RegexFault> regexFault(const QString& pattern);

} // namespace quarry
