#include "updater/RequestCoding.h"

#include <QByteArray>
#include <QStringDecoder>

namespace quarry {

namespace {

/// The value of an upper-case hexadecimal digit; 0 for any other character.
int digitValue(QChar c)
{
    if (c >= u'0' && c <= u'9')
        return c.unicode() - u'0';
    return c >= u'A' && c <= u'F' ? c.unicode() - u'A' + 10 : 0;
}

QStringView withoutLowEnds(QStringView text)
{
    while (!text.isEmpty() && text.front() < u'0')
        text = text.sliced(1);
    while (!text.isEmpty() && text.back() < u'0')
        text.chop(1);
    return text;
}

} // namespace

QString RequestCoding::asciiToHexa(const QString& text)
{
    if (text.isNull())
        return QStringLiteral("ERROR");
    QString hexa;
    for (const char byte : text.toUtf8())
        hexa += QString::asprintf("%02x", static_cast<unsigned>(static_cast<signed char>(byte)));
    return hexa;
}

QString RequestCoding::hexaToAscii(const QString& text)
{
    const QString upper = text.toUpper();
    const QStringView digits = withoutLowEnds(upper);
    QByteArray bytes;
    for (qsizetype i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(digitValue(digits[i]) * 16 + digitValue(digits[i + 1]));
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString decoded = utf8.decode(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : decoded;
}

} // namespace quarry
