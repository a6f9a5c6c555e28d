#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Output.h"
#include "archive/PropertyListFile.h"
#include "engines/SearchServices.h"
#include "text/Url.h"

#include <QJsonArray>

namespace quarry {

namespace {

struct Options {
    QStringList names;
    std::optional<QString> address;
    bool on = false;
    bool off = false;
    bool reset = false;
    bool json = false;
    [[nodiscard]] int changes() const { return (address ? 1 : 0) + (on ? 1 : 0) + (off ? 1 : 0) + (reset ? 1 : 0); }
};

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

/// What the file says about a service once it is reached at that address; none when it is no such address.
std::optional<PlistValue::Dictionary> entryForAddress(const QString& text)
{
    const std::optional<Url> url =
        Url::fromText(text.contains(QLatin1String("://")) ? text : QStringLiteral("http://") + text);
    if (!url || url->host().isEmpty() || !(url->path().isEmpty() || url->path() == QLatin1String("/")) ||
        !url->query().isEmpty())
        return std::nullopt;
    PlistValue::Dictionary entry = {{key("scheme"), url->scheme().toString().toLower()},
                                    {key("host"), url->host().toString()}};
    if (const std::optional<qint64> port = portOf(*url))
        entry.insert(key("port"), *port);
    return entry;
}

/// The service a person means; none when there is no such service.
std::optional<SearchService> serviceNamed(const QString& name)
{
    for (const SearchService service : AllSearchServices) {
        if (searchServiceName(service).compare(name, Qt::CaseInsensitive) == 0)
            return service;
    }
    return std::nullopt;
}

void applyTo(PlistValue::Dictionary& entries, const QString& name, const Options& options)
{
    if (options.reset) {
        entries.remove(name);
        return;
    }
    PlistValue::Dictionary entry = entries.value(name).dictionary().value_or(PlistValue::Dictionary());
    if (options.address) {
        for (const char* part : {"scheme", "host", "port"})
            entry.remove(key(part));
        entry.insert(*entryForAddress(*options.address));
    } else if (options.on) {
        entry.remove(key("enabled"));
    } else {
        entry.insert(key("enabled"), false);
    }
    if (entry.isEmpty())
        entries.remove(name);
    else
        entries.insert(name, entry);
}

/// Changes the file; nothing is written when what would come out makes no sense.
Outcome change(Session& session, const Options& options, const QStringList& names)
{
    if (Outcome ready = session.prepareHome(); !ready.ok())
        return ready;
    const PropertyListFile file(session.home().searchServicesFile(), session.home().writerLockFile(), session.files());
    QString fault;
    const QString error = file.change([&](PlistValue::Dictionary& entries) {
        PlistValue::Dictionary changed = entries;
        if (options.reset && names.size() == qsizetype(AllSearchServices.size()))
            changed.clear();
        for (const QString& name : names)
            applyTo(changed, name, options);
        fault = SearchServices::fromPropertyList(writeXmlPropertyList(changed)).error;
        if (fault.isEmpty())
            entries = changed;
    });
    if (!error.isEmpty())
        return Outcome::failed(error);
    if (!fault.isEmpty())
        return Outcome::failed(fault + QStringLiteral("\nNothing was changed; quarry services --reset puts the public "
                                                      "services back."));
    return Outcome::done();
}

Outcome table(Session& session, const Options& options)
{
    const SearchServices::Loaded loaded = SearchServices::load(session.home().searchServicesFile());
    if (!loaded.error.isEmpty())
        writeError(QStringLiteral("quarry: %1; the public services serve\n").arg(shown(loaded.error)));
    QJsonArray array;
    QString text;
    for (const SearchService service : AllSearchServices) {
        const bool enabled = loaded.services.isEnabled(service);
        const QString address = loaded.services.origin(service);
        array.append(QJsonObject{{key("name"), searchServiceName(service)},
                                 {key("address"), address},
                                 {key("enabled"), enabled},
                                 {key("isPublic"), !loaded.services.endpoint(service).hostChanged}});
        text += QStringLiteral("%1 %2 %3\n")
                    .arg(searchServiceName(service), -8)
                    .arg(enabled ? QStringLiteral("on") : QStringLiteral("off"), -4)
                    .arg(shown(address));
    }
    if (options.json)
        return Outcome::done(jsonText({{key("services"), array}, {key("fault"), loaded.error}}));
    return Outcome::done(text.trimmed());
}

/// The names of the services meant, as the file spells them; all without a name.
Outcome namesOf(const Options& options, QStringList& names)
{
    for (const QString& name : options.names) {
        const std::optional<SearchService> service = serviceNamed(name);
        if (!service)
            return Outcome::wrongUse(QStringLiteral("there is no service \"%1\"").arg(shown(name)));
        names.append(searchServiceName(*service));
    }
    if (options.names.isEmpty()) {
        for (const SearchService service : AllSearchServices)
            names.append(searchServiceName(service));
    }
    return Outcome::done();
}

Outcome services(Session& session, const Options& options)
{
    if (Outcome home = session.checkHome(); !home.ok())
        return home;
    QStringList names;
    if (Outcome fault = namesOf(options, names); !fault.ok())
        return fault;
    if (options.changes() > 1)
        return Outcome::wrongUse(QStringLiteral("--at, --on, --off and --reset exclude each other"));
    if (options.changes() == 0 && !options.names.isEmpty())
        return Outcome::wrongUse(QStringLiteral("what is to become of them? --at, --on, --off or --reset"));
    if (options.address && !entryForAddress(*options.address))
        return Outcome::wrongUse(QStringLiteral("\"%1\" is no address of a service: scheme, host and port, and nothing "
                                                "after them")
                                     .arg(shown(*options.address)));
    if (options.changes() == 1) {
        if (Outcome changed = change(session, options, names); !changed.ok())
            return changed;
    }
    return table(session, options);
}

} // namespace

void addServicesCommand(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    line.command(QStringLiteral("Settings"), QStringLiteral("services"),
                 QStringLiteral("Show or change where the search services are reached"),
                 {QStringLiteral("quarry services"),
                  QStringLiteral("quarry services --at http://127.0.0.1:8642        # all of them"),
                  QStringLiteral("quarry services Google Bing --at http://127.0.0.1:8642"),
                  QStringLiteral("quarry services Exalead --off"),
                  QStringLiteral("quarry services --reset                           # the public ones again")})
        .optionalArguments(QStringLiteral("services"), options->names,
                           QStringLiteral("Google, Yahoo, Bing, Exalead, Ixquick; all without"))
        .option(QStringLiteral("--at"), QStringLiteral("ADDRESS"), options->address,
                QStringLiteral("Reach them here: http://HOST:PORT or https://HOST:PORT"))
        .flag(QStringLiteral("--on"), options->on, QStringLiteral("Ask them"))
        .flag(QStringLiteral("--off"), options->off, QStringLiteral("Do not ask them"))
        .flag(QStringLiteral("--reset"), options->reset, QStringLiteral("Back to the public address, and on"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return services(session, *options); });
}

} // namespace quarry
