#pragma once

#include <QString>
#include <QStringView>

namespace quarry {

/// Without white space and line ends at both ends: every Unicode white space, the no-break ones included.
[[nodiscard]] QString trim(const QString& text);
/// True when trim leaves nothing.
[[nodiscard]] bool isBlank(QStringView text);

/// The trimmed text up to its first space, or the whole of it.
[[nodiscard]] QString firstWord(const QString& text);

/// The first line that holds something else than tabs and spaces, from its first to its last such character.
/// Lines end at a line feed or carriage return. Empty when there is none.
[[nodiscard]] QString firstNonBlankLine(const QString& text);

/// The first position at or after the index that holds the character (Latin-1), or -1. Never found from the last
/// position on: a character at the text's end is found only by a search that starts before it.
[[nodiscard]] qsizetype indexOfCharacterInString(QStringView text, char character, qsizetype afterIndex);
/// That search from position 0; a text of one character never has its own character.
[[nodiscard]] bool hasCharacter(QStringView text, char character);

/// Below, at or above 0: order by characters ignoring case, runs of digits by their value.
[[nodiscard]] int numericCompare(QStringView text, QStringView other);

/// Bytes written as hexadecimal pairs, read as UTF-8. What sorts before "0" is dropped at both ends; a high digit
/// that is none counts as 0, a low one is ignored, a single digit at the end too. Empty when it is no UTF-8.
[[nodiscard]] QString hexaToAscii(const QString& text);

} // namespace quarry
