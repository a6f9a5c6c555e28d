#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace quarry {

/// The namespace of the attributes that say what plain OPML cannot.
inline constexpr char16_t OpmlNamespace[] = u"urn:x-quarryspotter:opml";

// Attribute values that come back exactly as they were: a backslash is written "\\", and a UTF-16 unit that XML has
// no way to write as "\u" and four hexadecimal digits.
[[nodiscard]] QString opmlEscaped(const QString& text);
/// None for a backslash that begins neither.
[[nodiscard]] std::optional<QString> opmlUnescaped(const QString& value);

// Lists: each text escaped, its line ends too, and followed by a line end (which may be missing after the last).
[[nodiscard]] QString opmlEscapedList(const QStringList& texts);
[[nodiscard]] std::optional<QStringList> opmlUnescapedList(const QString& value);

} // namespace quarry
