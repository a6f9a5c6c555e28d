#include "gateway/Markup.h"

#include "gateway/SearchSource.h"

#include <cctype>

namespace quarry {

namespace {

void appendEscaped(QByteArray& to, char c)
{
    switch (c) {
    case '&':
        to += "&amp;";
        break;
    case '<':
        to += "&lt;";
        break;
    case '>':
        to += "&gt;";
        break;
    case '"':
        to += "&quot;";
        break;
    case '\'':
        to += "&#39;";
        break;
    default:
        // UTF-8's bytes above ASCII are negative where char is signed.
        to += (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) && c != '\n' && c != '\t' ? ' ' : c;
    }
}

} // namespace

QByteArray escapedMarkup(QByteArrayView utf8)
{
    QByteArray result;
    result.reserve(utf8.size() + utf8.size() / 16);
    for (const char c : utf8)
        appendEscaped(result, c);
    return result;
}

QByteArray escapedExcerpt(QByteArrayView utf8)
{
    QByteArray result;
    for (const char c : utf8) {
        if (c == matchBegin)
            result += "<b>";
        else if (c == matchEnd)
            result += "</b>";
        else
            appendEscaped(result, c);
    }
    return result;
}

QByteArray escapedPath(const QByteArray& path)
{
    return path.toPercentEncoding("/");
}

QByteArray escapedParameter(const QByteArray& value)
{
    return value.toPercentEncoding("/:");
}

QByteArray unescapedPath(const QByteArray& path)
{
    const auto isHex = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
    QByteArray result;
    for (qsizetype i = 0; i < path.size(); ++i) {
        if (path[i] == '%' && i + 2 < path.size() && isHex(path[i + 1]) && isHex(path[i + 2])) {
            result += QByteArray::fromHex(path.mid(i + 1, 2));
            i += 2;
        } else {
            result += path[i];
        }
    }
    return result;
}

} // namespace quarry
