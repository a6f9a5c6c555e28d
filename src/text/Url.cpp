#include "text/Url.h"

#include <algorithm>

namespace quarry {

namespace {

bool endsAuthority(QChar c)
{
    return c == u'/' || c == u'?' || c == u'#';
}

/// The bracketed host of an address that has one; empty otherwise.
QStringView literalHostOf(const QString& text)
{
    if (!text.contains(u'['))
        return {};
    const qsizetype slashes = text.indexOf(u"//");
    if (slashes < 0 || text.indexOf(u'/') != slashes || text.left(slashes).contains(u'?') ||
        text.left(slashes).contains(u'#'))
        return {};
    qsizetype end = slashes + 2;
    while (end < text.size() && !endsAuthority(text[end]))
        ++end;
    const QStringView authority = QStringView(text).mid(slashes + 2, end - slashes - 2);
    const QStringView server = authority.mid(authority.lastIndexOf(u'@') + 1);
    const qsizetype close = server.indexOf(u']');
    return server.startsWith(u'[') && close > 0 ? server.left(close + 1) : QStringView();
}

/// RFC 3986, section 5.2.4, in one pass: "." and ".." taken out of an absolute or relative path.
QString withoutDotSegments(QStringView path)
{
    const bool absolute = path.startsWith(u'/');
    QList<QStringView> kept;
    bool endsOpen = false; // The result ends with "/".
    for (const QStringView segment : path.mid(absolute ? 1 : 0).split(u'/')) {
        endsOpen = segment == u"." || segment == u"..";
        if (segment == u".." && !kept.isEmpty())
            kept.removeLast();
        else if (!endsOpen)
            kept.append(segment);
    }
    QString out = absolute ? QStringLiteral("/") : QString();
    for (qsizetype i = 0; i < kept.size(); ++i) {
        if (i > 0)
            out += u'/';
        out += kept[i];
    }
    if (endsOpen && !kept.isEmpty())
        out += u'/';
    return out;
}

/// A relative path put in the place of the base path's last component.
QString mergedPath(const Url& base, QStringView path)
{
    if (base.path().isEmpty())
        return u'/' + path.toString();
    return base.path().left(base.path().lastIndexOf(u'/') + 1).toString().append(path);
}

} // namespace

Url Url::fromStored(const QString& text)
{
    Url url;
    url._text = text;
    url._parts = splitUrl(QStringView(text));
    return url;
}

std::optional<Url> Url::fromText(const QString& text)
{
    Url url;
    url._text = escapedForAddress(text, literalHostOf(text));
    url._parts = splitUrl(QStringView(url._text));
    if (text.isEmpty() || !url._parts.isReadable)
        return std::nullopt;
    return url;
}

std::optional<Url> Url::resolved(const Url& base, const QString& reference)
{
    const Url relative = fromStored(escapedForAddress(reference, literalHostOf(reference)));
    if (!relative.scheme().isEmpty())
        return fromText(reference);
    const QStringView ref = relative._text;
    const qsizetype baseAuthority = base._parts.scheme.length > 0 ? base._parts.scheme.length + 1 : 0;
    if (ref.startsWith(u"//"))
        return fromText(base._text.left(baseAuthority).append(ref));

    QString text = base._text.left(base._parts.path.begin);
    const QStringView tail = ref.mid(relative._parts.path.begin + relative._parts.path.length); // "?query#fragment"
    if (!relative.path().isEmpty()) {
        const bool absolute = ref.startsWith(u'/');
        text += withoutDotSegments(absolute ? relative.path().toString() : mergedPath(base, relative.path()));
        text.append(tail);
    } else if (tail.startsWith(u'?')) {
        text.append(base.path()).append(tail);
    } else {
        text = base._text.left(base.fragmentBegin()).append(tail);
    }
    return fromText(text);
}

qsizetype Url::fragmentBegin() const
{
    const qsizetype mark = _text.indexOf(u'#');
    return mark < 0 ? _text.size() : mark;
}

QString Url::pathExtension() const
{
    QStringView name = path();
    while (name.endsWith(u'/'))
        name.chop(1);
    name = name.mid(name.lastIndexOf(u'/') + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot <= 0)
        return {};
    const QString extension = name.mid(dot + 1).toString();
    return percentUnescaped(extension).value_or(extension);
}

QByteArray Url::requestBytes() const
{
    const QStringView text = QStringView(_text).left(fragmentBegin());
    QString out;
    out.reserve(text.size());
    for (qsizetype at = 0; at < text.size();) {
        if (_parts.host.length > 0 && at == _parts.host.begin && !host().startsWith(u'[')) {
            const QByteArray ascii = asciiHost(host());
            out += QLatin1String(ascii.constData(), ascii.size());
            at += _parts.host.length;
        } else if (text[at] > u' ' && text[at] < u'\x7f') {
            out += text[at++];
        } else {
            appendPercentEscaped(out, nextCodePoint(text, at));
        }
    }
    return out.toLatin1();
}

} // namespace quarry
