#pragma once

#include "model/QueryCore.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace quarry {

// What the numbers and kinds of the model are called on the command line and in exported files.

/// "plain", "advanced", "combined", "folder"
[[nodiscard]] QString kindName(QueryKind kind);
[[nodiscard]] std::optional<QueryKind> kindNamed(const QString& name);

/// "any" (the words, in any order), "exact" (side by side), "in-page" (side by side, looked up in each page): the
/// modes 1, 2 and 3.
[[nodiscard]] QStringList wordsModeNames();
/// The same, "none" for 0, else the number.
[[nodiscard]] QString wordsModeName(qint64 wordsRestriction);
/// The mode that wordsModeName gives that name; none for other texts.
[[nodiscard]] std::optional<qint64> wordsModeNamed(const QString& name);

/// "Google", ...; the identifier itself when no service has it.
[[nodiscard]] QString engineName(const QString& engineId);

} // namespace quarry
