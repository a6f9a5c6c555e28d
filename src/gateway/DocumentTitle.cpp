#include "gateway/DocumentTitle.h"

#include "gateway/HtmlText.h"

#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <array>
#include <cctype>

namespace quarry {

namespace {

constexpr qsizetype longestTitle = 120;
constexpr int linesLookedAt = 40;

bool hasLetters(const QByteArray& line)
{
    // Bytes above ASCII belong to letters far more often than not.
    return std::count_if(line.begin(), line.end(), [](char c) {
               return std::isalpha(static_cast<unsigned char>(c)) != 0 || static_cast<unsigned char>(c) >= 0x80;
           }) >= 2;
}

/// "#!/bin/sh", "-*- mode -*-", ".. include::", "<?xml": what programs read, not people.
bool isMachineLine(const QByteArray& line)
{
    constexpr std::array<const char*, 5> beginnings = {"#!", "-*-", "..", "<", "/*"};
    return std::any_of(beginnings.begin(), beginnings.end(), [&](const char* begin) { return line.startsWith(begin); });
}

/// "Format: 1.0"
bool isField(const QByteArray& line)
{
    const qsizetype colon = line.indexOf(':');
    const qsizetype space = line.indexOf(' ');
    return colon > 0 && (space < 0 || space > colon);
}

QByteArray withoutHeadingMarks(QByteArray line)
{
    if (!line.startsWith('#') && !line.startsWith('=') && !line.startsWith('*'))
        return line;
    const char mark = line[0];
    while (line.startsWith(mark))
        line = line.mid(1);
    while (line.endsWith(mark))
        line.chop(1);
    return line.trimmed();
}

/// Markdown's "[text](target)" and "![text](target)" as the text alone.
QByteArray withoutLinks(QByteArray line)
{
    for (qsizetype middle = line.indexOf("]("); middle >= 0; middle = line.indexOf("](")) {
        const qsizetype open = line.lastIndexOf('[', middle);
        const qsizetype close = line.indexOf(')', middle);
        if (open < 0 || close < 0)
            break;
        line.remove(middle, close + 1 - middle);
        const qsizetype begin = open > 0 && line[open - 1] == '!' ? open - 1 : open;
        line.remove(begin, open + 1 - begin);
    }
    return line;
}

QByteArray headingOf(const QByteArray& text)
{
    qsizetype begin = 0;
    for (int i = 0; i < linesLookedAt && begin < text.size(); ++i) {
        const qsizetype feed = text.indexOf('\n', begin);
        const qsizetype end = feed < 0 ? text.size() : feed;
        const QByteArray line = collapsed(text.mid(begin, std::min<qsizetype>(end - begin, 4 * longestTitle)));
        begin = end + 1;
        if (isMachineLine(line))
            continue;
        // None of the lines of a text that begins with fields is its title.
        if (isField(line))
            return {};
        QByteArray heading = withoutLinks(withoutHeadingMarks(line));
        if (hasLetters(heading))
            return heading;
    }
    return {};
}

/// Titles stand near the beginning; the rest of a long page need not be gone through for one.
QByteArrayView headOf(const QByteArray& text)
{
    constexpr qsizetype longestHead = qsizetype(64) * 1024;
    return QByteArrayView(text).first(std::min(longestHead, text.size()));
}

QByteArray nameOf(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    if (slash <= 0)
        return path.mid(slash + 1);
    const qsizetype before = path.lastIndexOf('/', slash - 1);
    return path.mid(slash + 1) + " (" + path.mid(before + 1, slash - before - 1) + ')';
}

/// At most so many bytes, cut between words where there are any, else between characters.
QByteArray shortened(const QByteArray& title)
{
    if (title.size() <= longestTitle)
        return title;
    qsizetype end = title.lastIndexOf(' ', longestTitle);
    if (end < longestTitle / 2) {
        end = longestTitle;
        while (end > 0 && (title[end] & 0xC0) == 0x80)
            --end;
    }
    return title.first(end) + "\u2026";
}

} // namespace

QByteArray documentTitle(const Document& document, const QByteArray& path)
{
    QByteArray title = document.kind == Document::Kind::Html
                           ? collapsed(HtmlText::fromPage(headOf(document.text)).title)
                           : headingOf(document.text);
    // Whoever reads result pages takes out what looks like a tag: a title that is one would leave nothing.
    if (!hasLetters(title) || title.startsWith('<'))
        title = collapsed(QString::fromUtf8(nameOf(path)).toUtf8()); // A name need not be UTF-8.
    return title.isEmpty() ? QByteArrayLiteral("document") : shortened(title);
}

} // namespace quarry
