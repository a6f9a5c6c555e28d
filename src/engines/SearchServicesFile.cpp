#include "engines/SearchServicesFile.h"

#include "engines/SearchServices.h"
#include "text/Url.h"

namespace quarry {

namespace {

QString key(const char* name)
{
    return QString::fromLatin1(name);
}

/// The port that an address names; none when it names none.
std::optional<qint64> portOf(const Url& url)
{
    const QString& text = url.absoluteString();
    const qsizetype host = url.host().data() - text.constData();
    const qsizetype colon = host + url.host().size();
    if (colon >= text.size() || text.at(colon) != u':')
        return std::nullopt;
    const qsizetype end = text.indexOf(u'/', colon);
    bool ok = false;
    const qint64 port = QStringView(text).mid(colon + 1, end < 0 ? -1 : end - colon - 1).toLongLong(&ok);
    return ok ? std::optional(port) : std::nullopt;
}

} // namespace

SearchServicesFile::SearchServicesFile(const HomeFolder& home, FileStore& files)
    : _file(home.searchServicesFile(), home.writerLockFile(), files)
{
}

std::optional<PlistValue::Dictionary> SearchServicesFile::entryForAddress(const QString& address)
{
    const std::optional<Url> url =
        Url::fromText(address.contains(QLatin1String("://")) ? address : QStringLiteral("http://") + address);
    if (!url || url->host().isEmpty() || !(url->path().isEmpty() || url->path() == QLatin1String("/")) ||
        !url->query().isEmpty())
        return std::nullopt;
    PlistValue::Dictionary entry = {{key("scheme"), url->scheme().toString().toLower()},
                                    {key("host"), url->host().toString()}};
    if (const std::optional<qint64> port = portOf(*url))
        entry.insert(key("port"), *port);
    return entry;
}

QString SearchServicesFile::change(const std::function<void(PlistValue::Dictionary&)>& apply, bool* isSenseless) const
{
    QString fault;
    const QString error = _file.change([&](PlistValue::Dictionary& entries) {
        PlistValue::Dictionary changed = entries;
        apply(changed);
        fault = SearchServices::fromPropertyList(writeXmlPropertyList(changed)).error;
        if (fault.isEmpty())
            entries = changed;
    });
    if (isSenseless)
        *isSenseless = error.isEmpty() && !fault.isEmpty();
    return error.isEmpty() ? fault : error;
}

QString SearchServicesFile::reachAllAt(const QString& address) const
{
    const std::optional<PlistValue::Dictionary> wanted = entryForAddress(address);
    if (!wanted)
        return QStringLiteral("\"%1\" is no address of a service").arg(address);
    return change([&wanted](PlistValue::Dictionary& entries) {
        for (const SearchService service : AllSearchServices) {
            const QString name = searchServiceName(service);
            PlistValue::Dictionary entry = entries.value(name).dictionary().value_or(PlistValue::Dictionary());
            setServiceAddress(entry, *wanted);
            entries.insert(name, entry);
        }
    });
}

QString SearchServicesFile::reset() const
{
    return change([](PlistValue::Dictionary& entries) { entries.clear(); });
}

void setServiceAddress(PlistValue::Dictionary& service, const PlistValue::Dictionary& address)
{
    for (const char* part : {"scheme", "host", "port"})
        service.remove(key(part));
    service.insert(address);
}

} // namespace quarry
