#pragma once

#include <QString>

namespace quarry {

/// Whether XML 1.0 has no way to write the UTF-16 unit at that place: controls other than tab and line ends, halves
/// of surrogate pairs, U+FFFE and U+FFFF.
[[nodiscard]] bool isBeyondXml(QStringView text, qsizetype at);

/// The text with U+FFFD for every such unit. Spreadsheets do not take them either.
[[nodiscard]] QString plainText(QString text);

} // namespace quarry
