#include "text/Tags.h"

#include "text/Entities.h"
#include "text/FoldedSearch.h"
#include "text/Lines.h"
#include "text/Spans.h"
#include "text/TagScanner.h"
#include "text/UnitSearch.h"

namespace quarry {

namespace {

/// Deletes every "- -" in one pass.
void removeDashes(QString& text)
{
    constexpr QLatin1String dashes("- -");
    const char16_t* const begin = QStringView(text).utf16();
    const char16_t* const end = begin + text.size();
    if (text.size() < dashes.size())
        return;
    const auto isDashAfterSpace = [](auto unit, auto previous) { return (unit == u'-') & (previous == u' '); };
    for (const char16_t* p = begin + 2; (p = findUnitPair(p, end, isDashAfterSpace)) != end; ++p) {
        if (p[-2] == u'-') {
            text.remove(dashes);
            return;
        }
    }
}

constexpr bool isBlankUnit(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

/// The first position that `normalised` changes, given that a text begins at `p`.
const char16_t* findUnnormalised(const char16_t* p, const char16_t* end)
{
    if (p == end || isBlankUnit(*p))
        return p;
    return findUnitPair(p + 1, end, [](auto unit, auto previous) {
        return (unit == u'\t') | (unit == u'\n') | (unit == u'\r') | ((unit == u' ') & (previous == u' '));
    });
}

} // namespace

QString stringByRemovingHTML(const QString& text)
{
    QString plain;
    if (!scanHtmlInOnePass(text, plain))
        plain = scanHtmlStepByStep(normalised(text));
    removeDashes(plain);
    unescapeXml(plain);
    unescapeExtendedCharacters(plain);
    return trim(plain);
}

QString stringByRemovingTagOnly(const QString& text)
{
    QString plain = scanTagsOnly(text);
    unescapeXml(plain);
    return plain;
}

QString normalised(const QString& text)
{
    const char16_t* in = QStringView(text).utf16();
    const char16_t* const end = in + text.size();
    const char16_t* change = findUnnormalised(in, end);
    if (change == end)
        return text;
    QString result(text.size(), Qt::Uninitialized);
    char16_t* const begin = writableUnits(result);
    char16_t* out = begin;
    while (true) {
        out = std::copy(in, change, out);
        if (change == end)
            break;
        // A run of blanks: one space for all of it, which may be there already.
        if (out != begin && out[-1] != u' ')
            *out++ = u' ';
        in = change;
        while (in != end && isBlankUnit(*in))
            ++in;
        change = findUnnormalised(in, end);
    }
    result.truncate(out - begin);
    return result;
}

QString summaryTextFromHTML(const QString& text)
{
    QString summary = normalised(stringByRemovingHTML(text));
    removeDashes(summary);
    return summary;
}

QString titleTextFromHTML(const QString& text)
{
    return firstNonBlankLine(stringByRemovingHTML(text));
}

} // namespace quarry
