#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <optional>

namespace quarry {

/// A plain zlib stream at zlib's default level. None for an empty buffer and when zlib fails.
[[nodiscard]] std::optional<QByteArray> compressedData(const QByteArray& data);

/// The bytes of a zlib stream; an empty buffer is returned as it is. None when the stream is damaged or cut, or
/// holds more than 256 MiB.
[[nodiscard]] std::optional<QByteArray> decompressedData(const QByteArray& data);

/// Two upper-case hexadecimal digits a byte.
[[nodiscard]] QString hexaString(const QByteArray& data);

/// The MD5 digest of the text's UTF-8 bytes as 32 lower-case hexadecimal digits.
[[nodiscard]] QString md5sum(const QString& text);

/// The hexadecimal number a text begins with, no "0x" understood; 0 when it begins with none. Too many digits keep
/// the lowest 64 bits.
[[nodiscard]] quint64 hexValue(QStringView text);

} // namespace quarry
