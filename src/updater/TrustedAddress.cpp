#include "updater/TrustedAddress.h"

#include <QStringList>

#include <algorithm>

namespace quarry {

namespace {

bool isLoopbackIpv4(QStringView host)
{
    const QStringList parts = host.toString().split(u'.');
    const auto isByte = [](const QString& part) {
        return !part.isEmpty() && part.size() <= 3 && part.toUInt() < 256 &&
               std::all_of(part.begin(), part.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    };
    return parts.size() == 4 && parts.front() == QLatin1String("127") &&
           std::all_of(parts.begin(), parts.end(), isByte);
}

bool hasScheme(const Url& address, QLatin1String scheme)
{
    return address.scheme().compare(scheme, Qt::CaseInsensitive) == 0;
}

} // namespace

bool isLoopbackIp(const QByteArray& ip)
{
    return ip == "::1" || isLoopbackIpv4(QString::fromLatin1(ip));
}

bool isLoopbackAddress(const Url& address)
{
    const QStringView host = address.host();
    return hasScheme(address, QLatin1String("http")) &&
           (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 || host == QLatin1String("[::1]") ||
            isLoopbackIpv4(host));
}

bool isTrustedUpdateAddress(const Url& address)
{
    return (hasScheme(address, QLatin1String("https")) && !address.host().isEmpty()) || isLoopbackAddress(address);
}

} // namespace quarry
