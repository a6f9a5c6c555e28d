#pragma once

#include "text/PageDecoding.h"

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <optional>

namespace quarry {

/// What stands behind the first " charset=" of a page, letter case apart, up to the next double quote. A quote right
/// behind it begins the value. None without a quote within 20 characters, or when the page ends before these.
[[nodiscard]] std::optional<QStringView> declaredCharset(QStringView page);

/// The encoding of a charset's name. A name that is not among the usual ones is logged, and so is what was found for
/// it; UTF-8 when nothing was.
[[nodiscard]] EncodingNumber encodingOrEquivalent(QStringView charset);

/// The same from a shorter table: an unknown name is logged and is UTF-8.
[[nodiscard]] EncodingNumber encodingOrUtf8(QStringView charset);

} // namespace quarry
