#include "database/ServiceHealthFile.h"

#include "engines/ServiceHealthText.h"

#include <algorithm>

namespace quarry {

namespace {

using Dictionary = PlistValue::Dictionary;

/// What a server said goes into the file only so far.
constexpr qsizetype LongestText = 200;

QString runsKey()
{
    return QStringLiteral("runs");
}

QString key(const char* name)
{
    return QString::fromLatin1(name);
}

QString shortText(const QString& text)
{
    QString shortened = text.left(LongestText);
    // The form of the file does not have every character, and halves of a pair are none.
    for (QChar& unit : shortened) {
        if (!unit.isPrint())
            unit = u' ';
    }
    return shortened;
}

Dictionary entryOf(const ServiceHealth& health)
{
    Dictionary statuses;
    for (auto status = health.statuses.begin(); status != health.statuses.end(); ++status)
        statuses.insert(QString::number(status.key()), status.value());
    Dictionary judged;
    for (const ServiceVerdict verdict : AllServiceVerdicts) {
        const ServiceHealth::Judged& some = health.judgedAs(verdict);
        if (some.pages == 0)
            continue;
        Dictionary entry = {{key("pages"), some.pages}};
        if (!some.error.isEmpty())
            entry.insert(key("error"), shortText(some.error));
        judged.insert(verdictName(verdict), entry);
    }
    return {{key("verdict"), verdictName(health.verdict())},
            {key("pages"), health.pages()},
            {key("cached"), health.cachedPages},
            {key("results"), health.results},
            {key("bytes"), health.bytes},
            {key("seconds"), health.seconds},
            {key("statuses"), statuses},
            {key("judged"), judged}};
}

Dictionary entryOf(const ServiceHealthFile::Run& run)
{
    Dictionary services;
    for (auto service = run.services.begin(); service != run.services.end(); ++service) {
        Dictionary entry = entryOf(*service);
        if (const QString address = run.addresses.value(service.key()); !address.isEmpty())
            entry.insert(key("address"), address);
        services.insert(searchServiceName(service.key()), entry);
    }
    return {{key("ended"), run.ended}, {key("stopped"), run.isStopped}, {key("services"), services}};
}

int countIn(const PlistValue& value)
{
    return static_cast<int>(std::clamp<qint64>(value.integer().value_or(0), 0, 1'000'000));
}

/// A negative one means nothing.
template <typename Number>
Number amountIn(std::optional<Number> value)
{
    return std::max(value.value_or(Number(0)), Number(0));
}

ServiceHealth healthIn(const PlistValue& entry)
{
    ServiceHealth health;
    health.cachedPages = countIn(entry[key("cached")]);
    health.results = amountIn(entry[key("results")].integer());
    health.bytes = amountIn(entry[key("bytes")].integer());
    health.seconds = amountIn(entry[key("seconds")].real());
    const Dictionary statuses = entry[key("statuses")].dictionary().value_or(Dictionary());
    for (auto status = statuses.begin(); status != statuses.end(); ++status) {
        if (const int number = status.key().toInt(); number > 0)
            health.statuses.insert(number, countIn(*status));
    }
    for (const ServiceVerdict verdict : AllServiceVerdicts) {
        const PlistValue some = entry[key("judged")][verdictName(verdict)];
        health.judgedAs(verdict) = {countIn(some[key("pages")]), some[key("error")].text().value_or(QString())};
    }
    return health;
}

std::optional<ServiceHealthFile::Run> runIn(const PlistValue& entry)
{
    const std::optional<Date> ended = entry[key("ended")].date();
    if (!ended)
        return std::nullopt;
    ServiceHealthFile::Run run{*ended, entry[key("stopped")].boolean().value_or(false), {}, {}};
    for (const SearchService service : AllSearchServices) {
        const PlistValue found = entry[key("services")][searchServiceName(service)];
        const ServiceHealth health = healthIn(found);
        if (health.pages() == 0)
            continue;
        run.services.insert(service, health);
        run.addresses.insert(service, found[key("address")].text().value_or(QString()));
    }
    return run;
}

} // namespace

ServiceHealthFile::ServiceHealthFile(HomeFolder home, FileStore& files)
    : _home(std::move(home)), _file(_home.serviceHealthFile(), _home.writerLockFile(), files)
{
}

QList<ServiceHealthFile::Run> ServiceHealthFile::read(QString* fault) const
{
    const PropertyListFile::Content content = _file.read();
    if (fault)
        *fault = content.fault;
    QList<Run> runs;
    const PlistValue::List entries = content.entries.value(runsKey()).list().value_or(PlistValue::List());
    for (const PlistValue& entry : entries) {
        if (auto run = runIn(entry))
            runs.append(*std::move(run));
    }
    return runs;
}

QString ServiceHealthFile::add(const Run& run) const
{
    if (run.services.isEmpty())
        return {};
    if (QString error = _home.makeFolders(); !error.isEmpty())
        return error;
    return _file.change([&run](Dictionary& entries) {
        PlistValue::List runs = entries.value(runsKey()).list().value_or(PlistValue::List());
        runs.append(entryOf(run));
        entries.insert(runsKey(), runs.mid(std::max<qsizetype>(runs.size() - MostRuns, 0)));
    });
}

std::optional<ServiceHealthFile::Run> ServiceHealthFile::latestOf(const QList<Run>& runs, SearchService service,
                                                                  const QString& address)
{
    const auto found = std::find_if(runs.rbegin(), runs.rend(), [&](const Run& run) {
        return run.services.contains(service) && run.addresses.value(service) == address;
    });
    return found == runs.rend() ? std::nullopt : std::optional(*found);
}

} // namespace quarry
