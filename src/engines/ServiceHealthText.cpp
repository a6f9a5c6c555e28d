#include "engines/ServiceHealthText.h"

#include <QStringList>

#include <algorithm>

namespace quarry {

namespace {

QString verdictText(ServiceVerdict verdict)
{
    switch (verdict) {
    case ServiceVerdict::Results:
        return QStringLiteral("results");
    case ServiceVerdict::NothingFound:
        return QStringLiteral("nothing found");
    case ServiceVerdict::Blocked:
        return QStringLiteral("blocked");
    case ServiceVerdict::NotRecognised:
        return QStringLiteral("layout not recognised");
    case ServiceVerdict::Unreachable:
        break;
    }
    return QStringLiteral("unreachable");
}

QString shareOfPages(int some, int all)
{
    return QStringLiteral("%1 of %2 pages").arg(some).arg(all);
}

QString challengeText()
{
    return QStringLiteral("a page that asks whether a person is there");
}

} // namespace

QString verdictName(ServiceVerdict verdict)
{
    switch (verdict) {
    case ServiceVerdict::Results:
        return QStringLiteral("results");
    case ServiceVerdict::NothingFound:
        return QStringLiteral("none");
    case ServiceVerdict::Blocked:
        return QStringLiteral("blocked");
    case ServiceVerdict::NotRecognised:
        return QStringLiteral("layout");
    case ServiceVerdict::Unreachable:
        break;
    }
    return QStringLiteral("unreachable");
}

std::optional<ServiceVerdict> verdictNamed(const QString& name)
{
    const auto* const found = std::find_if(AllServiceVerdicts.begin(), AllServiceVerdicts.end(),
                                           [&](ServiceVerdict verdict) { return verdictName(verdict) == name; });
    return found == AllServiceVerdicts.end() ? std::nullopt : std::optional(*found);
}

QString healthText(const ServiceHealth& health)
{
    const ServiceVerdict verdict = health.verdict();
    const ServiceHealth::Judged& judged = health.judgedAs(verdict);
    QStringList details;
    if (verdict == ServiceVerdict::Results) {
        if (health.pagesMissed() > 0)
            details.append(shareOfPages(health.pagesMissed(), health.pages()) + QStringLiteral(" could not be read"));
    } else if (verdict != ServiceVerdict::NothingFound) {
        if (!judged.error.isEmpty())
            details.append(judged.error);
        else if (verdict == ServiceVerdict::Blocked)
            details.append(challengeText());
        if (judged.pages < health.pages())
            details.append(shareOfPages(judged.pages, health.pages()));
    }
    const QString text = verdictText(verdict);
    return details.isEmpty() ? text : text + QStringLiteral(" (") + details.join(QLatin1String("; ")) + u')';
}

QString uselessPagesText(const ServiceHealth& health)
{
    switch (health.verdict()) {
    case ServiceVerdict::Blocked:
        return challengeText();
    case ServiceVerdict::NotRecognised:
        return QStringLiteral("its pages hold no list of results");
    default:
        return {};
    }
}

QString healthSummary(const HealthByService& services)
{
    QStringList states;
    QMap<QString, QStringList> servicesOf;
    for (auto service = services.begin(); service != services.end(); ++service) {
        const QString state = healthText(*service);
        if (!servicesOf.contains(state))
            states.append(state);
        servicesOf[state].append(searchServiceName(service.key()));
    }
    QStringList parts;
    for (const QString& state : states)
        parts.append(servicesOf[state].join(QLatin1String(", ")) + QStringLiteral(": ") + state);
    return parts.join(QLatin1String("; "));
}

QJsonObject jsonOfHealth(const ServiceHealth& health)
{
    QJsonObject statuses;
    for (auto status = health.statuses.begin(); status != health.statuses.end(); ++status)
        statuses.insert(QString::number(status.key()), status.value());
    QJsonObject judged;
    for (const ServiceVerdict verdict : AllServiceVerdicts) {
        if (const int pages = health.judgedAs(verdict).pages; pages > 0)
            judged.insert(verdictName(verdict), pages);
    }
    return {{QStringLiteral("verdict"), verdictName(health.verdict())},
            {QStringLiteral("text"), healthText(health)},
            {QStringLiteral("results"), health.results},
            {QStringLiteral("pages"), health.pages()},
            {QStringLiteral("cached"), health.cachedPages},
            {QStringLiteral("judged"), judged},
            {QStringLiteral("statuses"), statuses},
            {QStringLiteral("bytes"), health.bytes},
            {QStringLiteral("seconds"), health.seconds}};
}

} // namespace quarry
