#include "gateway/Host.h"

#include "gateway/Markup.h"

#include <algorithm>
#include <cctype>

namespace quarry {

QByteArray hostOf(const QByteArray& hostAndPort)
{
    const qsizetype colon = hostAndPort.indexOf(':', hostAndPort.startsWith('[') ? hostAndPort.indexOf(']') : 0);
    const QByteArray host = hostAndPort.mid(0, colon).toLower();
    const bool isHost = std::all_of(host.begin(), host.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '-' || c == '_' || c == ':' ||
               c == '[' || c == ']';
    });
    return isHost ? host : QByteArray();
}

bool isLoopbackHost(const QByteArray& host)
{
    if (host == "localhost" || host == "[::1]" || host == "::1")
        return true;
    const QList<QByteArray> numbers = host.split('.');
    return numbers.size() == 4 && numbers[0] == "127" &&
           std::all_of(numbers.begin(), numbers.end(), [](const QByteArray& number) {
               bool ok = false;
               return number.toUInt(&ok) < 256 && ok;
           });
}

QByteArray placeOf(const QString& site, const QByteArray& ownHost)
{
    QByteArray place = site.toUtf8();
    for (const char* scheme : {"http://", "https://"}) {
        if (place.toLower().startsWith(scheme))
            place.remove(0, static_cast<qsizetype>(qstrlen(scheme)));
    }
    const qsizetype slash = place.indexOf('/');
    const QByteArray host = hostOf(place.mid(0, slash));
    const bool isOwn = !host.isEmpty() && (host == ownHost || isLoopbackHost(host));
    if (isOwn)
        place = slash < 0 ? QByteArray() : place.mid(slash);
    if (place.startsWith("/doc/") || place == "/doc")
        place.remove(0, 4);
    while (place.startsWith('/'))
        place.remove(0, 1);
    while (place.endsWith('/'))
        place.chop(1);
    return unescapedPath(place);
}

} // namespace quarry
