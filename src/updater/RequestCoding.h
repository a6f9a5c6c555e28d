#pragma once

#include <QString>

#include <optional>

namespace quarry {

/// The text codings of the update script's request.
struct RequestCoding {
    /// The form in which the update script is asked: two lower-case hexadecimal digits for each byte of the text's
    /// UTF-8 form. A byte is taken as a signed character, so one above 0x7F becomes the eight digits of its
    /// sign-extended value. A null text gives "ERROR".
    [[nodiscard]] static QString asciiToHexa(const QString& text);

    /// The reverse: digits of either case, characters below "0" at both ends left out. Of each pair, a first character
    /// that is no digit counts as 0, and a second one is ignored. UTF-8, or ASCII where the bytes are no UTF-8. A text
    /// of length 1 gives an empty one.
    [[nodiscard]] static QString hexaToAscii(const QString& text);
};

} // namespace quarry
