#include "window/Highlight.h"

#include <algorithm>
#include <vector>

namespace quarry {

namespace {

struct Span {
    qsizetype from;
    qsizetype to;
};

/// Where the words occur, in order, without overlaps.
std::vector<Span> spansOf(const QString& text, const QStringList& words)
{
    std::vector<Span> spans;
    for (const QString& word : words) {
        for (qsizetype at = text.indexOf(word, 0, Qt::CaseInsensitive); at >= 0;
             at = text.indexOf(word, at + word.size(), Qt::CaseInsensitive))
            spans.push_back({at, at + word.size()});
    }
    std::sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) { return a.from < b.from; });
    std::vector<Span> joined;
    for (const Span& span : spans) {
        if (!joined.empty() && span.from <= joined.back().to)
            joined.back().to = std::max(joined.back().to, span.to);
        else
            joined.push_back(span);
    }
    return joined;
}

} // namespace

QStringList highlightWords(const QString& text)
{
    QStringList words;
    QString word;
    const QString ended = text + u' ';
    for (const QChar c : ended) {
        if (c.isLetterOrNumber() || c.isSurrogate() || c.isMark() || c == u'\'' || c == u'-') {
            word += c;
            continue;
        }
        while (word.startsWith(u'-') || word.startsWith(u'\''))
            word.remove(0, 1);
        if (word.size() > 1)
            words.append(word);
        word.clear();
    }
    return words;
}

QString highlighted(const QString& text, const QStringList& words)
{
    QString html;
    qsizetype done = 0;
    for (const Span& span : spansOf(text, words)) {
        html += text.mid(done, span.from - done).toHtmlEscaped();
        html += QLatin1String("<span style=\"background-color:#ffe08a;color:#1b1b1b\">") +
                text.mid(span.from, span.to - span.from).toHtmlEscaped() + QLatin1String("</span>");
        done = span.to;
    }
    return html + text.mid(done).toHtmlEscaped();
}

} // namespace quarry
