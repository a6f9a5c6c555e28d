#pragma once

#include <QByteArray>
#include <QString>

namespace quarry {

/// The text of an RTF document as HTML: paragraphs, line breaks, bold and italic. Fonts, colors, pictures, fields and
/// everything unknown are left out. Never fails: what is broken gives what could be read.
[[nodiscard]] QString htmlOfRichText(const QByteArray& rtf);

} // namespace quarry
