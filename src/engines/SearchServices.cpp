#include "engines/SearchServices.h"

#include "archive/PropertyList.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <optional>

namespace quarry {

namespace {

constexpr qint64 MaximumFileSize = 1 << 20;

SearchServices::Endpoint publicEndpoint(SearchService service)
{
    const QString http = QStringLiteral("http");
    switch (service) {
    case SearchService::Google:
        return {QStringLiteral("https"), QStringLiteral("www.google.com")};
    case SearchService::Yahoo:
        return {http, QStringLiteral("search.yahoo.com")};
    case SearchService::Bing:
        return {http, QStringLiteral("www.bing.com")};
    case SearchService::Exalead:
        return {http, QStringLiteral("www.exalead.fr")};
    case SearchService::Ixquick:
        return {http, QStringLiteral("www.ixquick.com")};
    }
    return {};
}

std::optional<SearchService> serviceNamed(const QString& name)
{
    for (const SearchService service : AllSearchServices) {
        if (searchServiceName(service) == name)
            return service;
    }
    return std::nullopt;
}

// Brackets of an IPv6 address would be percent-escaped with the rest of the finished address.
bool isPlainHost(const QString& host)
{
    const auto fits = [](QChar c) {
        return (c.unicode() < 128 && c.isLetterOrNumber()) || c == u'.' || c == u'-' || c == u'_';
    };
    return !host.isEmpty() && std::all_of(host.begin(), host.end(), fits);
}

// Each takes one entry over into the endpoint, or says what it should have been.
QString takeScheme(const PlistValue& value, SearchServices::Endpoint& endpoint)
{
    const QString scheme = value.text().value_or(QString());
    if (scheme != u"http" && scheme != u"https")
        return QStringLiteral("must be \"http\" or \"https\"");
    endpoint.scheme = scheme;
    return {};
}

QString takeHost(const PlistValue& value, SearchServices::Endpoint& endpoint)
{
    const QString host = value.text().value_or(QString());
    if (!isPlainHost(host))
        return QStringLiteral("must be a host name or IPv4 address, without scheme and port");
    endpoint.hostChanged = host.compare(endpoint.host, Qt::CaseInsensitive) != 0;
    endpoint.host = host;
    return {};
}

QString takePort(const PlistValue& value, SearchServices::Endpoint& endpoint)
{
    const auto* port = std::get_if<qint64>(&value.variant());
    if (port == nullptr || *port < 1 || *port > 65535)
        return QStringLiteral("must be a whole number from 1 to 65535");
    endpoint.port = static_cast<std::uint16_t>(*port);
    return {};
}

QString takeEnabled(const PlistValue& value, SearchServices::Endpoint& endpoint)
{
    const auto* enabled = std::get_if<bool>(&value.variant());
    if (enabled == nullptr)
        return QStringLiteral("must be true or false");
    endpoint.enabled = *enabled;
    return {};
}

QString takeEntry(const QString& key, const PlistValue& value, SearchServices::Endpoint& endpoint)
{
    if (key == u"scheme")
        return takeScheme(value, endpoint);
    if (key == u"host")
        return takeHost(value, endpoint);
    if (key == u"port")
        return takePort(value, endpoint);
    if (key == u"enabled")
        return takeEnabled(value, endpoint);
    return QStringLiteral("is not known; known are \"scheme\", \"host\", \"port\" and \"enabled\"");
}

QString takeService(const QString& name, const PlistValue& value, SearchServices::Endpoint& endpoint)
{
    const auto entries = value.dictionary();
    if (!entries)
        return QStringLiteral("\"%1\" must be a dictionary").arg(name);
    for (auto entry = entries->begin(); entry != entries->end(); ++entry) {
        const QString fault = takeEntry(entry.key(), entry.value(), endpoint);
        if (!fault.isEmpty())
            return QStringLiteral("\"%1\": \"%2\" %3").arg(name, entry.key(), fault);
    }
    return {};
}

SearchServices::Loaded refused(const QString& fault)
{
    return {SearchServices(), QStringLiteral("SearchServices.plist: ") + fault};
}

} // namespace

SearchServices::SearchServices()
{
    for (const SearchService service : AllSearchServices)
        _endpoints[indexOf(service)] = publicEndpoint(service);
}

SearchServices::Loaded SearchServices::load(const QString& path)
{
    QFile file(path);
    if (!file.exists())
        return {};
    // Opening a pipe would wait for its writer.
    if (!QFileInfo(path).isFile())
        return refused(QStringLiteral("is no file"));
    if (!file.open(QIODevice::ReadOnly))
        return refused(QStringLiteral("cannot be read: ") + file.errorString());
    if (file.size() > MaximumFileSize)
        return refused(QStringLiteral("is too large"));
    return fromPropertyList(file.read(file.size()));
}

SearchServices::Loaded SearchServices::fromPropertyList(const QByteArray& bytes)
{
    QString reason;
    const auto root = readPropertyList(bytes, &reason);
    if (!root)
        return refused(reason);
    const auto entries = root->dictionary();
    if (!entries)
        return refused(QStringLiteral("must be a dictionary of services"));

    Loaded loaded;
    for (auto entry = entries->begin(); entry != entries->end(); ++entry) {
        const auto service = serviceNamed(entry.key());
        if (!service)
            return refused(QStringLiteral("\"%1\" is no service").arg(entry.key()));
        const QString fault = takeService(entry.key(), entry.value(), loaded.services._endpoints[indexOf(*service)]);
        if (!fault.isEmpty())
            return refused(fault);
    }
    return loaded;
}

QString SearchServices::origin(SearchService service) const
{
    const Endpoint& at = endpoint(service);
    const QString origin = at.scheme + QStringLiteral("://") + at.host;
    return at.port == 0 ? origin : origin + QLatin1Char(':') + QString::number(at.port);
}

} // namespace quarry
