#include "gateway/HtmlText.h"

#include "text/Entities.h"

#include <QHash>
#include <QList>
#include <QString>

#include <algorithm>
#include <cctype>

namespace quarry {

namespace {

bool startsWithWord(QByteArrayView text, qsizetype at, QByteArrayView word)
{
    return at + word.size() <= text.size() && text.sliced(at, word.size()).compare(word, Qt::CaseInsensitive) == 0;
}

qsizetype find(QByteArrayView text, QByteArrayView word, qsizetype from)
{
    for (qsizetype at = text.indexOf(word[0], from); at >= 0; at = text.indexOf(word[0], at + 1)) {
        if (startsWithWord(text, at, word))
            return at;
    }
    return -1;
}

/// One after the ">" that ends the tag at that "<"; a ">" in a quoted value does not.
qsizetype endOfTag(QByteArrayView page, qsizetype at)
{
    char quote = 0;
    for (; at < page.size(); ++at) {
        const char c = page[at];
        if (quote != 0)
            quote = c == quote ? char(0) : quote;
        else if ((c == '"' || c == '\'') && page[at - 1] == '=')
            quote = c;
        else if (c == '>')
            return at + 1;
    }
    return page.size();
}

QByteArray tagName(QByteArrayView page, qsizetype at)
{
    qsizetype end = at;
    while (end < page.size() && (std::isalnum(static_cast<unsigned char>(page[end])) != 0 || page[end] == '/'))
        ++end;
    return page.sliced(at, end - at).toByteArray().toLower();
}

/// Tags inside a word or a sentence; every other one ends a word.
bool isInline(QByteArrayView name)
{
    static const QList<QByteArray> names = {"a", "abbr", "b",     "code", "em",     "font", "i", "kbd", "mark",
                                            "q", "samp", "small", "span", "strong", "tt",   "u", "var", "wbr"};
    return names.contains(name.startsWith('/') ? name.sliced(1) : name);
}

/// The text of an entity, given its name; empty when it is none. The names that matter to search results are enough
/// for an index too, but for a few marks; numbers stand for every character here.
QByteArray entity(QByteArrayView name)
{
    static const QHash<QByteArray, QByteArray> marks = {
        {"mdash", "\u2014"}, {"ldquo", "\u201C"}, {"rdquo", "\u201D"}, {"rarr", "\u2192"}, {"trade", "\u2122"}};
    if (!name.startsWith('#')) {
        if (const auto mark = marks.constFind(name.toByteArray()); mark != marks.constEnd())
            return *mark;
        const QString text = mapEntityToString(QString::fromUtf8(name));
        return text.size() > 1 && text.startsWith(u'&') ? QByteArray() : text.toUtf8();
    }
    const bool isHex = name.size() > 1 && (name[1] == 'x' || name[1] == 'X');
    bool ok = false;
    const uint code = name.sliced(isHex ? 2 : 1).toByteArray().toUInt(&ok, isHex ? 16 : 10);
    if (!ok || code < 0x20 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        return ok ? QByteArray(" ") : QByteArray();
    const auto character = static_cast<char32_t>(code);
    return QString::fromUcs4(&character, 1).toUtf8();
}

void appendText(QByteArray& to, QByteArrayView text)
{
    constexpr qsizetype longestName = 10;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const qsizetype length =
            text[at] == '&' ? text.sliced(at).first(std::min(text.size() - at, longestName + 2)).indexOf(';') : -1;
        const QByteArray decoded = length > 1 ? entity(text.sliced(at + 1, length - 1)) : QByteArray();
        if (decoded.isEmpty()) {
            to += text[at];
        } else {
            to += decoded;
            at += length;
        }
    }
}

/// The end of an element whose content is no text: from its close tag on.
qsizetype skipElement(QByteArrayView page, qsizetype at, const QByteArray& name)
{
    const qsizetype close = find(page, QByteArray("</" + name), at);
    return close < 0 ? page.size() : endOfTag(page, close + 1);
}

} // namespace

HtmlText HtmlText::fromPage(QByteArrayView page)
{
    HtmlText result;
    qsizetype at = 0;
    while (at < page.size()) {
        const qsizetype open = page.indexOf('<', at);
        appendText(result.body, page.sliced(at, (open < 0 ? page.size() : open) - at));
        if (open < 0)
            break;
        if (startsWithWord(page, open, "<!--")) {
            const qsizetype end = page.indexOf("-->", open + 4);
            at = end < 0 ? page.size() : end + 3;
            continue;
        }
        const QByteArray name = tagName(page, open + 1);
        if (name.isEmpty() && !startsWithWord(page, open, "<!") && !startsWithWord(page, open, "<?")) {
            result.body += '<'; // A "<" that opens no tag is text.
            at = open + 1;
            continue;
        }
        at = endOfTag(page, open + 1);
        if (name == "script" || name == "style") {
            at = skipElement(page, at, name);
        } else if (name == "title") {
            const qsizetype close = find(page, "</title", at);
            const QByteArrayView text = page.sliced(at, (close < 0 ? page.size() : close) - at);
            if (result.title.isEmpty())
                appendText(result.title, text);
            at += text.size();
        } else if (!isInline(name)) {
            result.body += '\n';
        }
    }
    return result;
}

} // namespace quarry
