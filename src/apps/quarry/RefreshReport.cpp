#include "apps/quarry/RefreshReport.h"

#include "apps/quarry/Output.h"

#include <QJsonDocument>

namespace quarry {

namespace {

QString textIn(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toString();
}

qint64 numberIn(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toInteger();
}

/// "12 new, 2 excluded": what came of a query; only what is not zero, but always the new ones.
QString linksText(const QJsonObject& event)
{
    QString text = QStringLiteral("%1 new").arg(numberIn(event, "added"));
    if (const qint64 excluded = numberIn(event, "excluded"); excluded > 0)
        text += QStringLiteral(", %1 excluded").arg(excluded);
    if (const qint64 blacklisted = numberIn(event, "blacklisted"); blacklisted > 0)
        text += QStringLiteral(", %1 blacklisted").arg(blacklisted);
    return text;
}

QString outcomeText(const QJsonObject& event)
{
    const QString outcome = textIn(event, "outcome");
    if (outcome == QLatin1String("updated"))
        return linksText(event);
    if (outcome == QLatin1String("recent"))
        return QStringLiteral("asked less than 15 minutes ago, nothing done");
    if (outcome == QLatin1String("unreachable"))
        return QStringLiteral("no service could be read");
    if (outcome == QLatin1String("removed"))
        return QStringLiteral("removed meanwhile");
    if (outcome == QLatin1String("failed"))
        return QStringLiteral("failed: ") + shown(textIn(event, "error"));
    return shown(outcome);
}

} // namespace

RefreshReport::RefreshReport(StatusLine::Voice voice) : _status(voice) {}

void RefreshReport::take(const QByteArray& line)
{
    const QJsonObject event = QJsonDocument::fromJson(line).object();
    const QString what = textIn(event, "event");
    if (what == QLatin1String("refresh-started")) {
        _expected = numberIn(event, "queries");
        _status.show(QStringLiteral("%1 to refresh").arg(counted(_expected, QStringLiteral("query"))));
    } else if (what == QLatin1String("service-asked")) {
        _status.show(QStringLiteral("asking %1 for %2").arg(textIn(event, "service"), textIn(event, "title")));
    } else if (what == QLatin1String("service-answered")) {
        takeAnswer(event);
    } else if (what == QLatin1String("query-finished")) {
        takeEndOfQuery(event);
    } else if (what == QLatin1String("message")) {
        _messages.append(shown(textIn(event, "text")));
    } else if (what == QLatin1String("save-failed")) {
        _messages.append(QStringLiteral("could not be saved: ") + shown(textIn(event, "error")));
    } else if (what == QLatin1String("refresh-finished")) {
        _end = event;
    }
}

void RefreshReport::takeAnswer(const QJsonObject& event)
{
    const QString error = textIn(event, "error");
    if (error.isEmpty())
        return;
    ServiceFault& fault = _serviceFaults[shown(textIn(event, "service"))];
    ++fault.count;
    fault.error = shown(error);
}

void RefreshReport::takeEndOfQuery(const QJsonObject& event)
{
    _queries.append(QJsonObject{
        {QStringLiteral("id"), event.value(QLatin1String("query"))},
        {QStringLiteral("title"), event.value(QLatin1String("title"))},
        {QStringLiteral("outcome"), event.value(QLatin1String("outcome"))},
        {QStringLiteral("added"), event.value(QLatin1String("added"))},
        {QStringLiteral("excluded"), event.value(QLatin1String("excluded"))},
        {QStringLiteral("blacklisted"), event.value(QLatin1String("blacklisted"))},
        {QStringLiteral("error"), textIn(event, "error")},
    });
    _status.say(QStringLiteral("[%1/%2] %3: %4")
                    .arg(_queries.size())
                    .arg(std::max(_expected, qint64(_queries.size())))
                    .arg(shown(textIn(event, "title")), outcomeText(event)));
}

void RefreshReport::finish()
{
    _status.clear();
}

QString RefreshReport::summary() const
{
    QString text = QStringLiteral("%1 updated: %2 added, %3 excluded, %4 blacklisted")
                       .arg(counted(numberIn(_end, "updated"), QStringLiteral("query")))
                       .arg(numberIn(_end, "added"))
                       .arg(numberIn(_end, "excluded"))
                       .arg(numberIn(_end, "blacklisted"));
    if (const qint64 recent = numberIn(_end, "recent"); recent > 0)
        text += QStringLiteral("; %1 asked less than 15 minutes ago").arg(recent);
    if (const qint64 failed = numberIn(_end, "failed"); failed > 0)
        text += QStringLiteral("; %1 failed").arg(failed);
    if (const qint64 stopped = numberIn(_end, "stopped"); stopped > 0)
        text += QStringLiteral("; %1 stopped").arg(stopped);
    if (const QString services = shown(textIn(_end, "servicesText")); !services.isEmpty())
        text += u'\n' + services;
    return text;
}

QStringList RefreshReport::faults() const
{
    // Services that fail usually fail together, for one reason.
    QMap<QString, QStringList> servicesOf;
    for (auto fault = _serviceFaults.begin(); fault != _serviceFaults.end(); ++fault)
        servicesOf[QStringLiteral("could not be read (%1): %2")
                       .arg(counted(fault->count, QStringLiteral("time")), fault->error)]
            .append(fault.key());
    QStringList lines = _messages;
    for (auto reason = servicesOf.begin(); reason != servicesOf.end(); ++reason)
        lines.append(reason->join(QLatin1String(", ")) + u' ' + reason.key());
    return lines;
}

QJsonObject RefreshReport::json() const
{
    QJsonObject object = {{QStringLiteral("queries"), _queries},
                          {QStringLiteral("services"), _end.value(QLatin1String("services")).toArray()},
                          {QStringLiteral("faults"), QJsonArray::fromStringList(faults())}};
    for (const char* key : {"status", "updated", "recent", "failed", "stopped", "added", "excluded", "blacklisted"})
        object.insert(QLatin1String(key), numberIn(_end, key));
    return object;
}

} // namespace quarry
