#pragma once

#include "exchange/JsonText.h"
#include "platform/Date.h"

#include <QString>
#include <QStringList>

namespace quarry {

/// Text from pages and files made fit to be shown: on one line, without the control characters that could drive
/// the terminal and without the marks that turn its direction.
[[nodiscard]] QString shown(const QString& text);

/// The same, cut to so many characters with "…" at the end when it is longer.
[[nodiscard]] QString shownWithin(const QString& text, qsizetype length);

/// "2026-11-21 04:10", local time; "never" for none and for the reference date.
[[nodiscard]] QString shownTime(std::optional<Date> date);

/// "1 result", "3 results": for nouns that only take an "s", and "1 query", "3 queries".
[[nodiscard]] QString counted(qint64 count, const QString& noun);

/// The beginning of a UUID that lists show.
[[nodiscard]] QString shortId(const QString& uuid);

/// Emphasis on a terminal that can show it; the text itself anywhere else, and when NO_COLOR is set.
[[nodiscard]] QString strong(const QString& text);
[[nodiscard]] QString faint(const QString& text);

/// Bytes to the standard streams, as UTF-8.
void writeOut(const QString& text);
void writeError(const QString& text);
/// Hands everything written to the system. False when some of it could not be written.
[[nodiscard]] bool finishOut();

} // namespace quarry
