#include "text/CharsetDeclaration.h"

#include "text/FoldedSearch.h"
#include "text/Spans.h"

#include <algorithm>

namespace quarry {

namespace {

constexpr qsizetype searchedBytes = 4096;

/// What stands behind `name` (folded), "=" and an optional quote, up to the next mark that can be in no name.
QStringView valueOf(QStringView text, QStringView name)
{
    for (qsizetype at = indexOfFolded(text, name); at >= 0; at = indexOfFolded(text, name, at + 1)) {
        QStringView rest = text.mid(at + name.size()).trimmed();
        if (!rest.startsWith(u'='))
            continue;
        rest = rest.mid(1).trimmed();
        if (rest.startsWith(u'"') || rest.startsWith(u'\''))
            rest = rest.mid(1).trimmed();
        const auto* end = std::find_if(rest.begin(), rest.end(),
                                       [](QChar c) { return c.isSpace() || QStringView(u"\"';,/>").contains(c); });
        return {rest.begin(), end};
    }
    return {};
}

/// The inside of the next tag that begins with the marker; `from` is moved behind it, or to -1 when there is none.
QStringView nextTag(QStringView text, QStringView marker, qsizetype& from)
{
    const qsizetype at = indexOfFolded(text, marker, from);
    const qsizetype end = at < 0 ? -1 : text.indexOf(u'>', at);
    from = end;
    return end < 0 ? QStringView() : text.mid(at + marker.size(), end - at - marker.size());
}

} // namespace

QString charsetOfContentType(QStringView contentType)
{
    return valueOf(contentType, u"charset").toString();
}

QString charsetDeclaredInPage(const QByteArray& page)
{
    QString head = QString::fromLatin1(page.left(searchedBytes));
    removeHTMLTagBeginingWith(head, u"<!--", u"-->");
    qsizetype at = 0;
    QStringView value = valueOf(nextTag(head, u"<?xml ", at), u"encoding");
    for (at = 0; at >= 0 && value.isEmpty();)
        value = valueOf(nextTag(head, u"<meta", at), u"charset");
    return value.startsWith(u"utf-16", Qt::CaseInsensitive) ? QStringLiteral("utf-8") : value.toString();
}

} // namespace quarry
