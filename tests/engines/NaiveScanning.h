#pragma once

#include <QString>
#include <QStringList>

// The scanning rules written down one step after the other, a character at a time and without any thought of speed:
// what the real scanners are held against.
namespace quarry::naive {

inline void removeSpans(QString& text, const QString& begin, const QString& end)
{
    for (;;) {
        const qsizetype from = text.indexOf(begin, 0, Qt::CaseInsensitive);
        const qsizetype to = from < 0 ? -1 : text.indexOf(end, from, Qt::CaseInsensitive);
        if (to < 0)
            return;
        text.remove(from, to + end.size() - from);
    }
}

/// With the blank that is put behind the page.
inline QString scanCopy(const QString& page)
{
    QString copy = page + QLatin1Char(' ');
    copy.replace(u'\t', u' ');
    copy.remove(u'\r').remove(u'\n');
    copy.remove(QStringLiteral("<wbr />"), Qt::CaseInsensitive);
    removeSpans(copy, QStringLiteral("<script"), QStringLiteral("</script>"));
    removeSpans(copy, QStringLiteral("<!--"), QStringLiteral("-->"));
    return copy;
}

inline bool standsAt(const QString& text, qsizetype position, const QString& wanted)
{
    return position + wanted.size() <= text.size() &&
           text.mid(position, wanted.size()).compare(wanted, Qt::CaseInsensitive) == 0;
}

inline QStringList elements(const QString& tag, const QString& opening, const QString& page)
{
    const QString text = scanCopy(page);
    const QString close = QStringLiteral("</") + tag;
    QStringList contents;
    qsizetype start = 0;
    for (;;) {
        qsizetype at = text.indexOf(opening, start, Qt::CaseInsensitive);
        if (at < 0)
            return contents;
        while (at < text.size() && text.at(at) != u'>')
            ++at;
        const qsizetype begin = at + 1;
        qsizetype last = text.size() - 2;
        int depth = 0;
        for (qsizetype p = begin; p + 1 < text.size(); ++p) {
            if (depth == 0 && text.at(p) == u'<' && text.at(p + 1) == u'/' && standsAt(text, p, close)) {
                last = p - 1;
                break;
            }
            if (text.at(p) == u'<') {
                if (standsAt(text, p + 1, tag))
                    ++depth;
                else if (standsAt(text, p, close))
                    --depth;
            }
        }
        if (last < begin)
            return contents;
        contents += text.mid(begin, last - begin + 1);
        start = last;
    }
}

/// The target behind `marker` from the tag on that holds the first of the patterns that is there.
inline QString target(const QStringList& patterns, const QString& marker, QChar quote, const QString& page)
{
    const QString text = scanCopy(page);
    qsizetype at = -1;
    for (const QString& pattern : patterns) {
        if (at < 0)
            at = text.indexOf(pattern, 0, Qt::CaseInsensitive);
    }
    if (at < 0)
        return {};
    while (at > 0 && text.at(at) != u'<')
        --at;
    if (text.at(at) != u'<')
        return {};
    const qsizetype found = text.indexOf(marker, at, Qt::CaseInsensitive);
    if (found < 0)
        return {};
    const qsizetype begin = found + marker.size();
    const qsizetype end = text.indexOf(quote, begin);
    return end < 0 ? QString() : text.mid(begin, end - begin);
}

} // namespace quarry::naive
