#pragma once

#include <QString>
#include <QStringList>

#include <variant>
#include <vector>

namespace quarry {

/// What a placeholder of a localised text stands for.
using FormatArgument = std::variant<QString, qint64, double>;

/// The format with its placeholders filled: "%@" by a text, "%d", "%ld", "%lu" by an integer, "%f", "%.1f" by a real;
/// "%%" is a percent sign. They take the arguments in order, "%2$@" the second one. All is done in one step, so a text
/// that holds placeholders itself stays as it is. A placeholder without an argument of its type stays as it stands.
[[nodiscard]] QString filledFormat(const QString& format, const std::vector<FormatArgument>& arguments);

/// The placeholders by the arguments they take, as "1@" or "2d": the same for every translation of a format.
[[nodiscard]] QStringList placeholdersOf(const QString& format);

} // namespace quarry
