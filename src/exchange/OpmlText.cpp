#include "exchange/OpmlText.h"

#include "exchange/PlainText.h"
#include "text/PercentEscapes.h"

namespace quarry {

namespace {

constexpr qsizetype UnitDigits = 4;

QString unitEscape(QChar c)
{
    return QStringLiteral("\\u%1").arg(c.unicode(), UnitDigits, 16, QLatin1Char('0'));
}

/// The unit whose digits begin there.
std::optional<QChar> unitAt(QStringView value, qsizetype at)
{
    const QStringView digits = value.mid(at, UnitDigits);
    int unit = 0;
    for (const QChar digit : digits) {
        if (hexDigitValue(digit.unicode()) < 0)
            return std::nullopt;
        unit = unit * 16 + hexDigitValue(digit.unicode());
    }
    return digits.size() == UnitDigits ? std::optional(QChar(unit)) : std::nullopt;
}

} // namespace

QString opmlEscaped(const QString& text)
{
    QString value;
    value.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == u'\\')
            value += QLatin1String("\\\\");
        else if (isBeyondXml(text, i))
            value += unitEscape(text.at(i));
        else
            value += text.at(i);
    }
    return value;
}

std::optional<QString> opmlUnescaped(const QString& value)
{
    QString text;
    text.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value.at(i) != u'\\') {
            text += value.at(i);
            continue;
        }
        const QChar kind = i + 1 < value.size() ? value.at(i + 1) : QChar();
        const auto unit = kind == u'u' ? unitAt(value, i + 2) : std::nullopt;
        if (kind != u'\\' && !unit)
            return std::nullopt;
        text += unit.value_or(kind);
        i += unit ? 1 + UnitDigits : 1;
    }
    return text;
}

QString opmlEscapedList(const QStringList& texts)
{
    QString value;
    for (const QString& text : texts)
        value += opmlEscaped(text).replace(u'\n', unitEscape(u'\n')) + u'\n';
    return value;
}

std::optional<QStringList> opmlUnescapedList(const QString& value)
{
    QStringList parts = value.split(u'\n');
    if (parts.last().isEmpty())
        parts.removeLast();
    for (QString& part : parts) {
        const std::optional<QString> text = opmlUnescaped(part);
        if (!text)
            return std::nullopt;
        part = *text;
    }
    return parts;
}

} // namespace quarry
