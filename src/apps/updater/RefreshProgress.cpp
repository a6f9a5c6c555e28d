#include "apps/updater/RefreshProgress.h"

#include "engines/ServiceHealthText.h"

#include <QJsonArray>

namespace quarry {

namespace {

QJsonObject about(const UpdatedQuery& query)
{
    return {{QStringLiteral("query"), query.uuid}, {QStringLiteral("title"), query.title}};
}

QString outcomeName(UpdateEnd end)
{
    switch (end) {
    case UpdateEnd::Updated:
        return QStringLiteral("updated");
    case UpdateEnd::Recent:
        return QStringLiteral("recent");
    case UpdateEnd::Unreachable:
        return QStringLiteral("unreachable");
    case UpdateEnd::Removed:
        return QStringLiteral("removed");
    case UpdateEnd::Stopped:
        return QStringLiteral("stopped");
    case UpdateEnd::Failed:
        break;
    }
    return QStringLiteral("failed");
}

QJsonObject endOf(const UpdatedQuery& query, const QString& outcome, const UpdateFacts& facts)
{
    QJsonObject members = about(query);
    members[QStringLiteral("outcome")] = outcome;
    members[QStringLiteral("added")] = facts.added;
    members[QStringLiteral("excluded")] = facts.excluded;
    members[QStringLiteral("blacklisted")] = facts.blacklisted;
    members[QStringLiteral("error")] = facts.error;
    return members;
}

QJsonArray healthOf(const HealthByService& services)
{
    QJsonArray array;
    for (auto service = services.begin(); service != services.end(); ++service) {
        QJsonObject health = jsonOfHealth(*service);
        health.insert(QStringLiteral("service"), searchServiceName(service.key()));
        array.append(health);
    }
    return array;
}

} // namespace

void RefreshProgress::send(const QString& name, const QJsonObject& members)
{
    QJsonObject event = members;
    event[QStringLiteral("event")] = name;
    _sink(event);
}

void RefreshProgress::refreshStarted(qsizetype queries)
{
    const std::lock_guard lock(_mutex);
    send(QStringLiteral("refresh-started"),
         {{QStringLiteral("protocol"), 1}, {QStringLiteral("queries"), static_cast<qint64>(queries)}});
}

void RefreshProgress::message(const QString& text)
{
    const std::lock_guard lock(_mutex);
    send(QStringLiteral("message"), {{QStringLiteral("text"), text}});
}

void RefreshProgress::queryPaused(const UpdatedQuery& query)
{
    const std::lock_guard lock(_mutex);
    ++_failed;
    send(QStringLiteral("query-finished"), endOf(query, QStringLiteral("paused"), {}));
}

void RefreshProgress::saved()
{
    const std::lock_guard lock(_mutex);
    send(QStringLiteral("saved"));
}

void RefreshProgress::saveFailed(const QString& error)
{
    const std::lock_guard lock(_mutex);
    send(QStringLiteral("save-failed"), {{QStringLiteral("error"), error}});
}

void RefreshProgress::refreshFinished(int status, const HealthByService& services)
{
    const std::lock_guard lock(_mutex);
    send(QStringLiteral("refresh-finished"), {{QStringLiteral("status"), status},
                                              {QStringLiteral("updated"), _updated},
                                              {QStringLiteral("recent"), _recent},
                                              {QStringLiteral("failed"), _failed},
                                              {QStringLiteral("stopped"), _stopped},
                                              {QStringLiteral("added"), _added},
                                              {QStringLiteral("excluded"), _excluded},
                                              {QStringLiteral("blacklisted"), _blacklisted},
                                              {QStringLiteral("services"), healthOf(services)},
                                              {QStringLiteral("servicesText"), healthSummary(services)}});
}

void RefreshProgress::updateStarted(const UpdatedQuery& query)
{
    const std::lock_guard lock(_mutex);
    send(QStringLiteral("query-started"), about(query));
}

void RefreshProgress::serviceAsked(const UpdatedQuery& query, SearchService service)
{
    const std::lock_guard lock(_mutex);
    QJsonObject members = about(query);
    members[QStringLiteral("service")] = searchServiceName(service);
    send(QStringLiteral("service-asked"), members);
}

void RefreshProgress::serviceAnswered(const UpdatedQuery& query, SearchService service, const ServiceFacts& facts)
{
    const std::lock_guard lock(_mutex);
    QJsonObject members = about(query);
    members[QStringLiteral("service")] = searchServiceName(service);
    members[QStringLiteral("results")] = static_cast<qint64>(facts.results);
    members[QStringLiteral("pages")] = facts.pages;
    members[QStringLiteral("cached")] = facts.cachedPages;
    members[QStringLiteral("failed")] = facts.failedPages;
    members[QStringLiteral("error")] = facts.error;
    if (facts.verdict)
        members[QStringLiteral("verdict")] = verdictName(*facts.verdict);
    send(QStringLiteral("service-answered"), members);
}

void RefreshProgress::updateFinished(const UpdatedQuery& query, const UpdateFacts& facts)
{
    const std::lock_guard lock(_mutex);
    _updated += facts.end == UpdateEnd::Updated;
    _recent += facts.end == UpdateEnd::Recent;
    _failed += facts.end == UpdateEnd::Failed || facts.end == UpdateEnd::Unreachable;
    _stopped += facts.end == UpdateEnd::Stopped;
    _added += facts.added;
    _excluded += facts.excluded;
    _blacklisted += facts.blacklisted;
    send(QStringLiteral("query-finished"), endOf(query, outcomeName(facts.end), facts));
}

bool RefreshProgress::someNotUpdated() const
{
    const std::lock_guard lock(_mutex);
    return _failed > 0;
}

} // namespace quarry
