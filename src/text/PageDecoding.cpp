#include "text/PageDecoding.h"

#include "text/CharsetDeclaration.h"

#include <uchardet.h>

#include <algorithm>
#include <memory>

namespace quarry {

namespace {

struct ByteOrderMark {
    QByteArrayView bytes;
    EncodingNumber encoding;
};

// The mark of UTF-32 begins with that of UTF-16 and so stands before it.
constexpr ByteOrderMark byteOrderMarks[] = {
    {QByteArrayView("\xEF\xBB\xBF", 3), utf8Encoding},
    {QByteArrayView("\xFF\xFE\0\0", 4), 0x8C000100U},
    {QByteArrayView("\xFF\xFE", 2), 10},
    {QByteArrayView("\xFE\xFF", 2), 10},
};

std::optional<EncodingNumber> byteOrderMark(const QByteArray& page)
{
    const auto* at = std::find_if(std::begin(byteOrderMarks), std::end(byteOrderMarks),
                                  [&](const ByteOrderMark& mark) { return page.startsWith(mark.bytes); });
    return at != std::end(byteOrderMarks) ? std::optional(at->encoding) : std::nullopt;
}

std::optional<DecodedPage> decodeAs(const QByteArray& page, EncodingNumber encoding)
{
    std::optional<QString> text = fromEncoding(page, encoding);
    if (!text)
        return std::nullopt;
    return DecodedPage{*std::move(text), encoding};
}

bool hasByteIn(const QByteArray& page, unsigned char first, unsigned char last)
{
    return std::any_of(page.begin(), page.end(), [&](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= first && byte <= last;
    });
}

/// A page is seldom true Latin-1: what uses its control characters means the Windows code page.
std::optional<DecodedPage> decodeAsNamed(const QByteArray& page, EncodingNumber encoding)
{
    const bool isWindows = encoding == latin1Encoding && hasByteIn(page, 0x80, 0x9F);
    return decodeAs(page, isWindows ? windows1252Encoding : encoding);
}

/// UTF-8 with fewer faults than sound characters beyond ASCII: a page cut or glued together carelessly.
std::optional<DecodedPage> decodeAsFaultyUtf8(const QByteArray& page)
{
    QString text = QString::fromUtf8(page);
    const qsizetype faults = text.count(QChar::ReplacementCharacter);
    const auto beyondAscii = std::count_if(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() >= 0x80; });
    if (faults >= beyondAscii - faults)
        return std::nullopt;
    return DecodedPage{std::move(text), utf8Encoding};
}

/// What the detector makes of the page; none when it has no idea, or one that is not in the table.
std::optional<EncodingNumber> guessedEncoding(const QByteArray& page)
{
    constexpr qsizetype enough = qsizetype{64} * 1024;
    const std::unique_ptr<uchardet, decltype(&uchardet_delete)> detector(uchardet_new(), &uchardet_delete);
    // Up to the first byte beyond ASCII there is nothing to learn, escape sequences excepted.
    const auto* firstHigh = std::find_if(page.begin(), page.end(), [](char c) { return (c & 0x80) != 0 || c == 0x1B; });
    const qsizetype length = std::min<qsizetype>(page.end() - firstHigh, enough);
    uchardet_handle_data(detector.get(), firstHigh, static_cast<size_t>(length));
    uchardet_data_end(detector.get());
    return encodingForCharset(QString::fromLatin1(uchardet_get_charset(detector.get())));
}

/// Faultless UTF-8 without the escape sequences of the 7-bit encodings can be taken for what it is.
std::optional<DecodedPage> decodeAsPlainUtf8(const QByteArray& page)
{
    const bool hasEscapes = page.contains('\x1B') && (page.contains("\x1B$") || page.contains("\x1B("));
    return hasEscapes ? std::nullopt : decodeAs(page, utf8Encoding);
}

/// Encodings of several bytes a character seldom convert by chance. One-byte encodings nearly always do; there the
/// text must hold a fair number of characters beyond ASCII, nearly all of them letters.
bool isConfident(const QByteArray& page, const DecodedPage& decoded)
{
    constexpr qsizetype fewest = 16;
    qsizetype beyondAscii = 0;
    qsizetype letters = 0;
    for (const QChar c : decoded.text) {
        beyondAscii += c.unicode() >= 0x80 ? 1 : 0;
        letters += c.unicode() >= 0x80 && c.isLetter() ? 1 : 0;
    }
    return decoded.text.size() < page.size() || (beyondAscii >= fewest && letters * 10 >= beyondAscii * 8);
}

DecodedPage decodeByDetection(const QByteArray& page)
{
    std::optional<DecodedPage> decoded = decodeAsPlainUtf8(page);
    if (!decoded) {
        if (const auto guess = guessedEncoding(page))
            decoded = decodeAsNamed(page, *guess);
    }
    if (!decoded)
        decoded = decodeAs(page, windows1252Encoding);
    return decoded ? *std::move(decoded) : DecodedPage{QString::fromLatin1(page), latin1Encoding};
}

} // namespace

DecodedPage decodeResultPage(const QByteArray& page, QStringView contentType)
{
    bool isCalledUtf8 = false;
    const auto attempt = [&](std::optional<EncodingNumber> encoding) {
        isCalledUtf8 = isCalledUtf8 || encoding == utf8Encoding;
        return encoding ? decodeAsNamed(page, *encoding) : std::nullopt;
    };
    if (auto decoded = attempt(byteOrderMark(page)))
        return *std::move(decoded);
    if (auto decoded = attempt(encodingForCharset(charsetOfContentType(contentType))))
        return *std::move(decoded);
    if (auto decoded = attempt(encodingForCharset(charsetDeclaredInPage(page))))
        return *std::move(decoded);
    if (auto decoded = isCalledUtf8 ? decodeAsFaultyUtf8(page) : std::nullopt)
        return *std::move(decoded);
    return decodeByDetection(page);
}

std::optional<DecodedPage> decodePageByBytes(const QByteArray& page)
{
    if (const auto mark = byteOrderMark(page)) {
        if (auto decoded = decodeAs(page, *mark))
            return decoded;
    }
    if (auto decoded = decodeAsPlainUtf8(page))
        return decoded;
    const auto guess = guessedEncoding(page);
    auto decoded = guess ? decodeAsNamed(page, *guess) : std::nullopt;
    return decoded && isConfident(page, *decoded) ? decoded : std::nullopt;
}

} // namespace quarry
