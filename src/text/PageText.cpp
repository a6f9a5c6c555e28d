#include "text/PageText.h"

#include "platform/SystemLog.h"
#include "text/CharsetDeclaration.h"
#include "text/DeclaredCharset.h"
#include "text/Lines.h"
#include "text/Tags.h"

#include <algorithm>

namespace quarry {

namespace {

/// A code that no character has, or half of a pair.
bool isIllegal(char32_t code)
{
    const QChar::Category category = QChar::category(code);
    return category == QChar::Other_NotAssigned || category == QChar::Other_Surrogate;
}

/// Without the illegal characters at both ends.
QStringView withoutIllegalEnds(QStringView text)
{
    while (!text.isEmpty()) {
        const bool pair = text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate();
        if (!isIllegal(pair ? QChar::surrogateToUcs4(text[0], text[1]) : char32_t{text[0].unicode()}))
            break;
        text = text.mid(pair ? 2 : 1);
    }
    while (!text.isEmpty()) {
        const qsizetype last = text.size() - 1;
        const bool pair = last > 0 && text[last - 1].isHighSurrogate() && text[last].isLowSurrogate();
        if (!isIllegal(pair ? QChar::surrogateToUcs4(text[last - 1], text[last]) : char32_t{text[last].unicode()}))
            break;
        text.chop(pair ? 2 : 1);
    }
    return text;
}

/// One line of plain text without white space at its ends.
QString cleaned(const QString& html)
{
    QString text = trim(withoutIllegalEnds(normalised(stringByRemovingHTML(html))).toString());
    std::replace_if(
        text.begin(), text.end(), [](QChar c) { return c == u'\r' || c == u'\n' || c == u'\t'; }, QChar(u' '));
    return text;
}

/// A page whose bytes do not tell its encoding still shows what it declares: that is plain ASCII. Read so, what is no
/// UTF-8 does no harm.
std::optional<QString> charsetDeclaredIn(const QByteArray& page)
{
    const QString text = QString::fromUtf8(page);
    const auto charset = declaredCharset(text);
    return charset ? std::optional(charset->toString()) : std::nullopt;
}

/// None, too, when the page cannot be had.
std::optional<QString> loadedAs(PageLoader& loader, const Url& address, EncodingNumber encoding)
{
    const LoadedPage page = loader.load(address.requestBytes());
    return page.ok() ? fromEncoding(page.bytes, encoding) : std::nullopt;
}

std::optional<QString> textByItself(const QByteArray& page)
{
    std::optional<DecodedPage> decoded = decodePageByBytes(page);
    return decoded ? std::optional(std::move(decoded->text)) : strictUtf8(page);
}

} // namespace

std::optional<QString> stringWithContentsNotCachedOfURL(PageLoader& loader, const Url& address, EncodingNumber encoding)
{
    if (address.isEmpty())
        return QString(QLatin1String(""));
    const LoadedPage page = loader.load(address.requestBytes());
    if (!page.ok() || page.bytes.isEmpty())
        return QString(QLatin1String(""));
    return fromEncoding(page.bytes, encoding);
}

std::optional<DecodedPage> stringWithContentsOfURL(PageLoader& loader, const Url& address)
{
    const LoadedPage page = loader.load(address.requestBytes());
    if (!page.ok())
        return std::nullopt;
    if (auto decoded = decodePageByBytes(page.bytes))
        return decoded;
    const auto sentAs = encodingForCharset(charsetOfContentType(page.contentType));
    auto text = sentAs ? fromEncoding(page.bytes, *sentAs) : std::nullopt;
    return text ? std::optional(DecodedPage{*std::move(text), *sentAs}) : std::nullopt;
}

std::optional<QString> cleanStringWithContentsOfURL(PageLoader& loader, const Url& address)
{
    if (address.isEmpty()) {
        systemLog(QStringLiteral("*** Assertion failure in StringExtensions:397: "
                                 "cleanStringWithContentsOfURL assertion failure"));
        return std::nullopt;
    }
    const LoadedPage page = loader.load(address.requestBytes());
    if (!page.ok())
        return std::nullopt;
    // The page's bytes stay in memory for the readings that follow; a file of them would only have to be removed again.
    if (!decodePageByBytes(page.bytes)) {
        const QString charset = charsetDeclaredIn(page.bytes).value_or(QString());
        if (!charset.isEmpty())
            static_cast<void>(encodingOrEquivalent(charset)); // For the log: the page's own bytes decide.
    }
    const auto text = textByItself(page.bytes);
    return text ? std::optional(cleaned(*text)) : std::nullopt;
}

std::optional<QString> cleanStringWithContentsOfURL2(PageLoader& loader, const Url& address)
{
    std::optional<QString> text;
    if (const auto read = stringWithContentsOfURL(loader, address)) {
        text = loadedAs(loader, address, read->encoding);
    } else {
        const LoadedPage page = loader.load(address.requestBytes());
        if (const auto charset = page.ok() ? charsetDeclaredIn(page.bytes) : std::nullopt)
            text = loadedAs(loader, address, encodingOrUtf8(*charset));
        else if (page.ok())
            text = strictUtf8(page.bytes);
    }
    if (!text)
        text = loadedAs(loader, address, utf8Encoding);
    return text ? std::optional(cleaned(*text)) : std::nullopt;
}

} // namespace quarry
