#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace quarry {

/// Text for an element or for an attribute in either kind of quotes; control characters become spaces.
[[nodiscard]] QByteArray escapedMarkup(QByteArrayView utf8);
/// The same for an excerpt, its matched words in bold.
[[nodiscard]] QByteArray escapedExcerpt(QByteArrayView utf8);
/// Percent-escaped for the path of an address, "/" kept. What comes out needs no escaping in markup.
[[nodiscard]] QByteArray escapedPath(const QByteArray& path);
/// Percent-escaped for the value of a parameter, ":" and "/" kept so that an address in it stays readable.
[[nodiscard]] QByteArray escapedParameter(const QByteArray& value);
/// Percent escapes undone, "+" left alone, broken escapes as they stand.
[[nodiscard]] QByteArray unescapedPath(const QByteArray& path);

} // namespace quarry
