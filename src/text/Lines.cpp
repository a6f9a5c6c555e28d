#include "text/Lines.h"

#include "text/FoldedSearch.h"
#include "text/PageDecoding.h"
#include "text/PercentEscapes.h"

#include <algorithm>

namespace quarry {

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

int sign(qsizetype difference)
{
    return difference < 0 ? -1 : (difference > 0 ? 1 : 0);
}

/// The digits that start at `at`, without zeros in front; `at` is moved past them.
QStringView takeNumber(QStringView text, qsizetype& at)
{
    const qsizetype begin = at;
    while (at < text.size() && isDigit(text[at]))
        ++at;
    QStringView digits = text.mid(begin, at - begin);
    while (digits.startsWith(u'0'))
        digits = digits.mid(1);
    return digits;
}

int compareNumbers(QStringView a, QStringView b)
{
    return a.size() != b.size() ? sign(a.size() - b.size()) : sign(a.compare(b));
}

} // namespace

QString trim(const QString& text)
{
    return text.trimmed();
}

bool isBlank(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
}

QString firstWord(const QString& text)
{
    const QString trimmed = trim(text);
    const qsizetype space = trimmed.indexOf(u' ');
    return space < 0 ? trimmed : trimmed.left(space);
}

QString firstNonBlankLine(const QString& text)
{
    const auto isLineEnd = [](QChar c) { return c == u'\n' || c == u'\r'; };
    const auto isFilled = [&](QChar c) { return c != u' ' && c != u'\t' && !isLineEnd(c); };
    const auto* const begin = std::find_if(text.begin(), text.end(), isFilled);
    const auto* end = std::find_if(begin, text.end(), isLineEnd);
    while (end != begin && !isFilled(end[-1]))
        --end;
    return QStringView(begin, end).toString();
}

qsizetype indexOfCharacterInString(QStringView text, char character, qsizetype afterIndex)
{
    return afterIndex < text.size() - 1 ? text.indexOf(QChar::fromLatin1(character), afterIndex) : -1;
}

bool hasCharacter(QStringView text, char character)
{
    return indexOfCharacterInString(text, character, 0) >= 0;
}

int numericCompare(QStringView text, QStringView other)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < text.size() && j < other.size()) {
        if (isDigit(text[i]) && isDigit(other[j])) {
            const QStringView a = takeNumber(text, i);
            if (const int order = compareNumbers(a, takeNumber(other, j)); order != 0)
                return order;
            continue;
        }
        const char16_t a = foldedUnit(text[i++].unicode());
        const char16_t b = foldedUnit(other[j++].unicode());
        if (a != b)
            return a < b ? -1 : 1;
    }
    return sign((text.size() - i) - (other.size() - j));
}

QString hexaToAscii(const QString& text)
{
    const QString upper = text.toUpper();
    QStringView digits = upper;
    while (!digits.isEmpty() && digits.front() < u'0')
        digits = digits.mid(1);
    while (!digits.isEmpty() && digits.back() < u'0')
        digits.chop(1);
    QByteArray bytes;
    bytes.reserve(digits.size() / 2);
    for (qsizetype i = 0; i + 1 < digits.size(); i += 2) {
        const int high = std::max(0, hexDigitValue(digits[i].unicode()));
        const int low = std::max(0, hexDigitValue(digits[i + 1].unicode()));
        bytes += static_cast<char>(high * 16 + low);
    }
    return strictUtf8(bytes).value_or(QString());
}

} // namespace quarry
