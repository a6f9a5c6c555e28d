#include "text/PercentEscapes.h"

#include <QStringDecoder>

namespace quarry {

namespace {

void appendEscapedByte(QString& out, unsigned byte)
{
    constexpr char16_t digits[] = u"0123456789ABCDEF";
    out += u'%';
    out += QChar(digits[byte >> 4]);
    out += QChar(digits[byte & 15U]);
}

/// The text with every character escaped that `keep(position)` does not want kept.
template <typename Keep>
QString escapedUnless(const QString& text, Keep keep)
{
    qsizetype at = 0;
    while (at < text.size() && keep(at))
        ++at;
    if (at == text.size())
        return text;
    QString out;
    out.reserve(text.size() + 32);
    out += QStringView(text).left(at);
    while (at < text.size()) {
        if (keep(at))
            out += text[at++];
        else
            appendPercentEscaped(out, nextCodePoint(text, at));
    }
    return out;
}

} // namespace

bool isPercentEscape(QStringView text, qsizetype at)
{
    return at + 2 < text.size() && text[at] == u'%' && hexDigitValue(text[at + 1].unicode()) >= 0 &&
           hexDigitValue(text[at + 2].unicode()) >= 0;
}

char32_t nextCodePoint(QStringView text, qsizetype& at)
{
    const QChar first = text[at++];
    if (!first.isSurrogate())
        return first.unicode();
    if (first.isHighSurrogate() && at < text.size() && text[at].isLowSurrogate())
        return QChar::surrogateToUcs4(first, text[at++]);
    return QChar::ReplacementCharacter;
}

void appendPercentEscaped(QString& out, char32_t c)
{
    if (c < 0x80) {
        appendEscapedByte(out, c);
        return;
    }
    if (c < 0x800) {
        appendEscapedByte(out, 0xC0U | (c >> 6));
    } else {
        if (c < 0x10000) {
            appendEscapedByte(out, 0xE0U | (c >> 12));
        } else {
            appendEscapedByte(out, 0xF0U | (c >> 18));
            appendEscapedByte(out, 0x80U | ((c >> 12) & 0x3FU));
        }
        appendEscapedByte(out, 0x80U | ((c >> 6) & 0x3FU));
    }
    appendEscapedByte(out, 0x80U | (c & 0x3FU));
}

QString percentEscaped(const QString& text)
{
    return escapedUnless(text, [&](qsizetype at) { return isAddressCharacter(text[at].unicode()); });
}

QString escapedForAddress(const QString& text, QStringView literalHost)
{
    const qsizetype fragmentMark = text.indexOf(u'#');
    const qsizetype hostBegin = literalHost.isEmpty() ? text.size() : literalHost.data() - text.constData();
    return escapedUnless(text, [&](qsizetype at) {
        const char16_t c = text[at].unicode();
        if (isAddressCharacter(c) || at == fragmentMark)
            return true;
        if (c == u'%')
            return isPercentEscape(text, at);
        return (c == u'[' || c == u']') && at >= hostBegin && at < hostBegin + literalHost.size();
    });
}

std::optional<QString> percentUnescaped(const QString& text)
{
    if (!text.contains(u'%'))
        return text;
    // Runs of escapes are read as UTF-8 together with what stands around them.
    const QByteArray utf8 = text.toUtf8();
    QByteArray bytes;
    bytes.reserve(utf8.size());
    for (qsizetype i = 0; i < utf8.size(); ++i) {
        const int high =
            utf8[i] == '%' && i + 2 < utf8.size() ? hexDigitValue(static_cast<unsigned char>(utf8[i + 1])) : -1;
        const int low = high >= 0 ? hexDigitValue(static_cast<unsigned char>(utf8[i + 2])) : -1;
        if (low >= 0) {
            bytes += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            bytes += utf8[i];
        }
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    QString result = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return result;
}

} // namespace quarry
