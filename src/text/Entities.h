#pragma once

#include <QString>

namespace quarry {

/// The text that stands for a character entity, given its name without "&" and ";". Names are case-sensitive;
/// "#233" and "#xe9" are cut to 16 bits, and codes below 33 become a space. An unknown name comes back as the whole
/// entity, "&name;". A null name is the empty string.
[[nodiscard]] QString mapEntityToString(const QString& name);

/// Every entity, from "&" to the next ";", replaced by mapEntityToString of what stands between; trimmed.
[[nodiscard]] QString stringByUnescapingExtendedCharacters(const QString& text);

/// The same in place, not trimmed.
void unescapeExtendedCharacters(QString& text);

/// Every UTF-16 unit at or above 128 as a decimal reference: "&#233;".
[[nodiscard]] QString stringByEscapingExtendedCharacters(const QString& text);

/// XML's five entities and its numeric references, decoded in one pass. What is none of them, a reference to a code
/// that is no XML character included, stays.
void unescapeXml(QString& text);

} // namespace quarry
