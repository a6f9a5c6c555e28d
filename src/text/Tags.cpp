#include "text/Tags.h"

#include "text/Entities.h"
#include "text/FoldedSearch.h"
#include "text/Lines.h"
#include "text/Spans.h"

#include <QLatin1String>

#include <algorithm>
#include <span>

namespace quarry {

namespace {

struct Span {
    QStringView begin;
    QStringView end;
};

constexpr Span unwantedSpans[] = {
    {u"<style", u"</style>"}, {u"<script", u"</script>"}, {u"<a ", u"</a>"}, {u"<!--", u"-->"}, {u"<form", u"</form>"},
};
constexpr QStringView bodyMarker = u"<body";

constexpr QStringView spacesInTags[] = {u"<br>", u"<p>", u"</p>", u"<hr>"};
constexpr QStringView spacesInHtml[] = {u"<br>", u"<p>", u"</p>", u"<hr>", u"&nbsp;"};

enum class Case { Matters, Ignored };

/// Where double quotes count for the tag scanner.
enum class Quotes { InTags, Everywhere };

qsizetype markerLengthAt(QStringView text, qsizetype at, std::span<const QStringView> markers, Case letterCase)
{
    for (const QStringView marker : markers) {
        if (letterCase == Case::Ignored ? standsFoldedAt(text, at, marker) : text.mid(at).startsWith(marker))
            return marker.size();
    }
    return 0;
}

/// Puts one space in the place of every marker. None is part of another one, so one pass does for all.
void replaceBySpaces(QString& text, std::span<const QStringView> markers, Case letterCase)
{
    const auto isCandidate = [](QChar c) { return c == u'<' || c == u'&'; };
    const qsizetype size = text.size();
    const qsizetype first = std::find_if(text.cbegin(), text.cend(), isCandidate) - text.cbegin();
    if (first == size)
        return;
    QChar* const data = text.data();
    QChar* out = data + first;
    for (qsizetype at = first; at < size;) {
        const qsizetype length = isCandidate(data[at]) ? markerLengthAt(text, at, markers, letterCase) : 0;
        *out++ = length > 0 ? QChar(u' ') : data[at];
        at += std::max<qsizetype>(length, 1);
    }
    text.truncate(out - data);
}

bool anyUnwantedBegins(const QString& text)
{
    for (qsizetype at = text.indexOf(u'<'); at >= 0; at = text.indexOf(u'<', at + 1)) {
        if (standsFoldedAt(text, at, bodyMarker) ||
            std::any_of(std::begin(unwantedSpans), std::end(unwantedSpans),
                        [&](const Span& span) { return standsFoldedAt(text, at, span.begin); }))
            return true;
    }
    return false;
}

void removeUnwanted(QString& text)
{
    // Removing one span can join another's marker, so all are looked for once one is there.
    if (!anyUnwantedBegins(text))
        return;
    const qsizetype body = indexOfFolded(text, bodyMarker);
    if (body > 0)
        text.remove(0, body);
    for (const Span& span : unwantedSpans)
        removeHTMLTagBeginingWith(text, span.begin, span.end);
}

/// The tag scanner. Everything is moved down as it is read; the end of a tag drops what was moved since its "<".
void removeTags(QString& text, Quotes quotes)
{
    const qsizetype first = text.indexOf(u'<');
    if (first < 0)
        return;
    bool inQuotes = quotes == Quotes::Everywhere && (QStringView(text).left(first).count(u'"') & 1) != 0;
    bool inTag = false;
    QChar* const data = text.data();
    const QChar* const end = data + text.size();
    QChar* out = data + first;
    QChar* tag = out;
    for (const QChar* in = out; in != end; ++in) {
        const QChar c = *in;
        *out++ = c;
        if (c == u'"') {
            inQuotes ^= inTag || quotes == Quotes::Everywhere;
        } else if (c == u'<' && !inQuotes && !inTag) {
            inTag = true;
            tag = out - 1;
        } else if (c == u'>' && inTag && !inQuotes) {
            inTag = false;
            out = tag;
        }
    }
    text.truncate(out - data);
}

void removeDashes(QString& text)
{
    text.remove(QLatin1String("- -"));
}

constexpr bool isBlankToNormalise(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

/// The first position that `normalised` changes, or the size.
qsizetype firstUnnormalised(QStringView text)
{
    bool previousWasSpace = true;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isBlank = isBlankToNormalise(text[i]);
        if (isBlank && (previousWasSpace || text[i] != u' '))
            return i;
        previousWasSpace = isBlank;
    }
    return text.size();
}

} // namespace

QString stringByRemovingHTML(const QString& text)
{
    QString plain = normalised(text);
    const bool hasTags = plain.contains(u'<');
    if (hasTags || plain.contains(u'&'))
        replaceBySpaces(plain, spacesInHtml, Case::Ignored);
    if (hasTags) {
        removeUnwanted(plain);
        removeTags(plain, Quotes::InTags);
    }
    removeDashes(plain);
    unescapeXml(plain);
    return stringByUnescapingExtendedCharacters(plain);
}

QString stringByRemovingTagOnly(const QString& text)
{
    QString plain = text;
    if (plain.contains(u'<')) {
        replaceBySpaces(plain, spacesInTags, Case::Matters);
        removeTags(plain, Quotes::Everywhere);
    }
    unescapeXml(plain);
    return plain;
}

QString normalised(const QString& text)
{
    const qsizetype first = firstUnnormalised(text);
    if (first == text.size())
        return text;
    QString result(text.size(), Qt::Uninitialized);
    QChar* out = std::copy_n(text.cbegin(), first, result.data());
    bool previousWasSpace = first == 0 || text[first - 1] == u' ';
    for (const QChar c : QStringView(text).mid(first)) {
        const bool isBlank = isBlankToNormalise(c);
        if (!isBlank || !previousWasSpace)
            *out++ = isBlank ? QChar(u' ') : c;
        previousWasSpace = isBlank;
    }
    result.truncate(out - result.constData());
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
