#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quarry {

/// The number of a text encoding as stored in page caches: 4 UTF-8, 5 Latin-1, 9 Latin-2, 10 UTF-16, 11, 12 and 15
/// the Windows code pages 1251, 1252 and 1250; every other one is 0x80000000 + the number of its CoreFoundation
/// encoding.
using EncodingNumber = quint32;

inline constexpr EncodingNumber utf8Encoding = 4;
inline constexpr EncodingNumber latin1Encoding = 5;
inline constexpr EncodingNumber windows1252Encoding = 12;

struct DecodedPage {
    QString text;
    EncodingNumber encoding = utf8Encoding;
};

/// The text of a result page. The first that converts decides: byte-order mark, the charset of the Content-Type
/// header, the one declared in the page's first 4 KiB, detection. A page declared as UTF-8 with single faults in
/// it is UTF-8 all the same. There is always an answer.
[[nodiscard]] DecodedPage decodeResultPage(const QByteArray& page, QStringView contentType);

/// The text of any other page, as far as the bytes alone tell: byte-order mark, strict UTF-8, then a guess that is
/// confident; none otherwise, so that the declared charset has its turn.
[[nodiscard]] std::optional<DecodedPage> decodePageByBytes(const QByteArray& page);

/// The number of a charset's name or one of its aliases, letter case apart; none for an unknown one.
[[nodiscard]] std::optional<EncodingNumber> encodingForCharset(QStringView name);

/// Strict: none when the bytes are not of this encoding, or its number is unknown.
[[nodiscard]] std::optional<QString> fromEncoding(const QByteArray& bytes, EncodingNumber encoding);
[[nodiscard]] std::optional<QString> strictUtf8(const QByteArray& bytes);

/// Lossy: what the encoding cannot hold becomes "?". An unknown number counts as UTF-8.
[[nodiscard]] QByteArray toEncoding(const QString& text, EncodingNumber encoding);

/// The text written in an encoding (lossy) and read back as UTF-8; none when the bytes are no UTF-8. The text
/// itself, at the price of a look at it, where both are the same.
[[nodiscard]] std::optional<QString> rereadAsUtf8(const QString& text, EncodingNumber encoding);

} // namespace quarry
