#include "text/Url.h"

#include "text/FoldedSearch.h"

#include <QUrl>

#include <algorithm>

namespace quarry {

namespace {

bool isLetter(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

bool isSchemeText(QStringView text)
{
    return !text.isEmpty() && isLetter(text.front().unicode()) && std::all_of(text.begin(), text.end(), [](QChar unit) {
        const char16_t c = unit.unicode();
        return isLetter(c) || isDigit(c) || c == u'+' || c == u'-' || c == u'.';
    });
}

bool endsAuthority(QChar c)
{
    return c == u'/' || c == u'?' || c == u'#';
}

bool isHostCharacter(QChar c)
{
    return isAddressCharacter(c.unicode()) && c != u'/' && c != u'?' && c != u':' && c != u'@';
}

/// The host as names are looked up: escapes undone, ASCII form. Empty when that cannot be done.
QByteArray asciiHost(QStringView host)
{
    const std::optional<QString> plain = percentUnescaped(host.toString());
    if (!plain)
        return {};
    if (std::all_of(plain->begin(), plain->end(), isHostCharacter))
        return plain->toLatin1();
    return QUrl::toAce(*plain);
}

bool isReadableHost(QStringView host)
{
    if (host.startsWith(u'[')) {
        const QStringView inner = host.mid(1).chopped(1);
        return host.endsWith(u']') && !inner.isEmpty() && std::all_of(inner.begin(), inner.end(), [](QChar c) {
                   return hexDigitValue(c.unicode()) >= 0 || c == u':' || c == u'.';
               });
    }
    return std::all_of(host.begin(), host.end(), isHostCharacter) || !asciiHost(host).isEmpty();
}

bool isReadablePort(QStringView digits)
{
    unsigned value = 0;
    for (const QChar c : digits) {
        if (!isDigit(c.unicode()) || value > 65535)
            return false;
        value = value * 10 + (c.unicode() - u'0');
    }
    return value <= 65535;
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
    url.split();
    return url;
}

std::optional<Url> Url::fromText(const QString& text)
{
    Url url;
    url._text = escapedForAddress(text, literalHostOf(text));
    if (text.isEmpty() || !url.split())
        return std::nullopt;
    return url;
}

std::optional<Url> Url::resolved(const Url& base, const QString& reference)
{
    const Url relative = fromStored(escapedForAddress(reference, literalHostOf(reference)));
    if (!relative.scheme().isEmpty())
        return fromText(reference);
    const QStringView ref = relative._text;
    const qsizetype baseAuthority = base._scheme.length > 0 ? base._scheme.length + 1 : 0;
    if (ref.startsWith(u"//"))
        return fromText(base._text.left(baseAuthority).append(ref));

    QString text = base._text.left(base._path.begin);
    const QStringView tail = ref.mid(relative._path.begin + relative._path.length); // "?query#fragment"
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

bool Url::split()
{
    const QStringView text = _text;
    qsizetype at = 0;
    while (at < text.size() && text[at] != u':' && !endsAuthority(text[at]))
        ++at;
    if (at < text.size() && text[at] == u':' && isSchemeText(text.left(at)))
        _scheme = {0, at++};
    else
        at = 0;

    bool readable = true;
    if (standsAt(text, at, u"//")) {
        const qsizetype begin = at + 2;
        at = begin;
        while (at < text.size() && !endsAuthority(text[at]))
            ++at;
        readable = splitAuthority(begin, at);
    }
    const qsizetype end = fragmentBegin();
    const qsizetype question = text.left(end).indexOf(u'?', at);
    _path = {at, (question < 0 ? end : question) - at};
    if (question >= 0)
        _query = {question + 1, end - question - 1};
    return readable;
}

bool Url::splitAuthority(qsizetype begin, qsizetype end)
{
    const QStringView authority = QStringView(_text).mid(begin, end - begin);
    const qsizetype serverBegin = authority.lastIndexOf(u'@') + 1;
    const QStringView server = authority.mid(serverBegin);
    const qsizetype close = server.startsWith(u'[') ? server.indexOf(u']') : 0;
    const qsizetype colon = close < 0 ? -1 : server.indexOf(u':', close);
    const QStringView host = colon < 0 ? server : server.left(colon);
    if (!isReadableHost(host) || (colon >= 0 && !isReadablePort(server.mid(colon + 1))))
        return false;
    _host = {begin + serverBegin, host.size()};
    return true;
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
        if (_host.length > 0 && at == _host.begin && !host().startsWith(u'[')) {
            const QByteArray ascii = asciiHost(host());
            out += QLatin1String(ascii.constData(), ascii.size());
            at += _host.length;
        } else if (text[at] > u' ' && text[at] < u'\x7f') {
            out += text[at++];
        } else {
            appendPercentEscaped(out, nextCodePoint(text, at));
        }
    }
    return out.toLatin1();
}

} // namespace quarry
