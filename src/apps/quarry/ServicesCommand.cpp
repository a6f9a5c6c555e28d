#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Output.h"
#include "database/ServiceHealthFile.h"
#include "engines/SearchServices.h"
#include "engines/SearchServicesFile.h"
#include "engines/ServiceHealthText.h"

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
        setServiceAddress(entry, *SearchServicesFile::entryForAddress(*options.address));
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
    const SearchServicesFile file(session.home(), session.files());
    const auto apply = [&](PlistValue::Dictionary& entries) {
        if (options.reset && names.size() == qsizetype(AllSearchServices.size()))
            entries.clear();
        for (const QString& name : names)
            applyTo(entries, name, options);
    };
    bool isSenseless = false;
    const QString error = file.change(apply, &isSenseless);
    if (isSenseless)
        return Outcome::failed(error + QStringLiteral("\nNothing was changed; quarry services --reset puts the public "
                                                      "services back."));
    return error.isEmpty() ? Outcome::done() : Outcome::failed(error);
}

/// What there is to say about one service.
struct Row {
    SearchService service;
    bool enabled = false;
    bool isPublic = false;
    QString address;
    std::optional<Date> asked; ///< The end of the latest run in which it was asked there.
    ServiceHealth health;      ///< In that run.
};

QList<Row> rowsOf(const SearchServices& services, const QList<ServiceHealthFile::Run>& runs)
{
    QList<Row> rows;
    for (const SearchService service : AllSearchServices) {
        Row row{service,
                services.isEnabled(service),
                !services.endpoint(service).hostChanged,
                services.origin(service),
                std::nullopt,
                {}};
        if (const auto run = ServiceHealthFile::latestOf(runs, service, row.address)) {
            row.asked = run->ended;
            row.health = run->services.value(service);
        }
        rows.append(row);
    }
    return rows;
}

QJsonObject jsonOf(const Row& row)
{
    QJsonValue health;
    if (row.asked) {
        QJsonObject object = jsonOfHealth(row.health);
        object.insert(key("ended"), jsonTime(row.asked));
        health = object;
    }
    return {{key("name"), searchServiceName(row.service)},
            {key("address"), row.address},
            {key("enabled"), row.enabled},
            {key("isPublic"), row.isPublic},
            {key("health"), health}};
}

QJsonArray jsonOf(const QList<ServiceHealthFile::Run>& runs)
{
    QJsonArray array;
    for (const ServiceHealthFile::Run& run : runs) {
        QJsonObject services;
        for (auto service = run.services.begin(); service != run.services.end(); ++service) {
            QJsonObject health = jsonOfHealth(*service);
            health.insert(key("address"), run.addresses.value(service.key()));
            services.insert(searchServiceName(service.key()), health);
        }
        array.append(QJsonObject{
            {key("ended"), jsonTime(run.ended)}, {key("stopped"), run.isStopped}, {key("services"), services}});
    }
    return array;
}

/// "2026-11-21 04:10  12 results  4 pages (1 cached)  results": empty for a service that was not asked.
QString healthColumns(const Row& row)
{
    if (!row.asked)
        return {};
    QString pages = counted(row.health.pages(), QStringLiteral("page"));
    if (row.health.cachedPages > 0)
        pages += QStringLiteral(" (%1 cached)").arg(row.health.cachedPages);
    return QStringLiteral("%1  %2  %3  %4")
        .arg(shownTime(row.asked), counted(row.health.results, QStringLiteral("result")).rightJustified(11),
             pages.leftJustified(20), shown(healthText(row.health)));
}

QString tableOf(const QList<Row>& rows)
{
    qsizetype width = 0;
    for (const Row& row : rows)
        width = std::max(width, shown(row.address).size());
    QString text;
    for (const Row& row : rows) {
        QString line = QStringLiteral("%1 %2 %3  %4")
                           .arg(searchServiceName(row.service), -8)
                           .arg(row.enabled ? QStringLiteral("on") : QStringLiteral("off"), -4)
                           .arg(shown(row.address).leftJustified(width), healthColumns(row));
        while (line.endsWith(u' '))
            line.chop(1);
        text += line + u'\n';
    }
    return text.trimmed();
}

Outcome table(Session& session, const Options& options)
{
    const SearchServices::Loaded loaded = SearchServices::load(session.home().searchServicesFile());
    if (!loaded.error.isEmpty())
        writeError(QStringLiteral("quarry: %1; the public services serve\n").arg(shown(loaded.error)));
    QString healthFault;
    const QList<ServiceHealthFile::Run> runs = ServiceHealthFile(session.home(), session.files()).read(&healthFault);
    if (!healthFault.isEmpty())
        writeError(QStringLiteral("quarry: %1\n").arg(shown(healthFault)));
    const QList<Row> rows = rowsOf(loaded.services, runs);
    if (!options.json)
        return Outcome::done(tableOf(rows));
    QJsonArray array;
    for (const Row& row : rows)
        array.append(jsonOf(row));
    return Outcome::done(
        jsonText({{key("services"), array}, {key("fault"), loaded.error}, {key("runs"), jsonOf(runs)}}));
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
    if (options.address && !SearchServicesFile::entryForAddress(*options.address))
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
