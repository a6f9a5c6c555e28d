#include "apps/updater/RefreshSinks.h"

#include <QJsonDocument>
#include <QMap>

#include <cstdio>

namespace quarry {

namespace {

QString textIn(const QJsonObject& event, const char* key)
{
    // Titles and faults come from outside: nothing in them may steer a terminal.
    QString text = event.value(QLatin1String(key)).toString();
    for (QChar& unit : text) {
        if (unit.category() == QChar::Other_Control)
            unit = u' ';
    }
    return text;
}

qint64 numberIn(const QJsonObject& event, const char* key)
{
    return event.value(QLatin1String(key)).toInteger();
}

void print(const QString& line)
{
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

QString linksText(const QJsonObject& event)
{
    return QStringLiteral("%1 added, %2 excluded, %3 blacklisted")
        .arg(numberIn(event, "added"))
        .arg(numberIn(event, "excluded"))
        .arg(numberIn(event, "blacklisted"));
}

QString outcomeText(const QJsonObject& event)
{
    const QString outcome = textIn(event, "outcome");
    if (outcome == QLatin1String("updated"))
        return linksText(event);
    if (outcome == QLatin1String("recent"))
        return QStringLiteral("updated less than 15 minutes ago, nothing asked");
    if (outcome == QLatin1String("unreachable"))
        return QStringLiteral("no service could be read");
    if (outcome == QLatin1String("failed"))
        return QStringLiteral("failed: ") + textIn(event, "error");
    return outcome;
}

bool isFault(const QString& outcome)
{
    return outcome == QLatin1String("failed") || outcome == QLatin1String("paused") ||
           outcome == QLatin1String("unreachable");
}

/// What a person reads.
class Text final {
public:
    explicit Text(bool showsQueries) : _showsQueries(showsQueries) {}

    void take(const QJsonObject& event)
    {
        const QString name = textIn(event, "event");
        if (name == QLatin1String("refresh-started"))
            _expected = numberIn(event, "queries");
        else if (name == QLatin1String("service-answered"))
            takeAnswer(event);
        else if (name == QLatin1String("query-finished"))
            takeEndOfQuery(event);
        else if (name == QLatin1String("message"))
            print(textIn(event, "text"));
        else if (name == QLatin1String("save-failed"))
            print(QStringLiteral("could not be saved: ") + textIn(event, "error"));
        else if (name == QLatin1String("refresh-finished"))
            takeEnd(event);
    }

private:
    void takeAnswer(const QJsonObject& event)
    {
        const QString error = textIn(event, "error");
        const QString service = textIn(event, "service");
        if (!error.isEmpty() && ++_faults[service] == 1)
            print(QStringLiteral("%1 could not be read: %2").arg(service, error));
    }

    void takeEndOfQuery(const QJsonObject& event)
    {
        ++_ended;
        const QString line = QStringLiteral("%1: %2").arg(textIn(event, "title"), outcomeText(event));
        if (_showsQueries)
            print(QStringLiteral("[%1/%2] %3").arg(_ended).arg(std::max(_expected, _ended)).arg(line));
        else if (isFault(textIn(event, "outcome")))
            print(line);
    }

    void takeEnd(const QJsonObject& event)
    {
        for (auto fault = _faults.cbegin(); fault != _faults.cend(); ++fault) {
            if (fault.value() > 1)
                print(QStringLiteral("%1 could not be read %2 times").arg(fault.key()).arg(fault.value()));
        }
        if (_showsQueries && _ended > 0)
            print(QStringLiteral("%1 updated, %2 recent, %3 failed, %4 stopped: %5")
                      .arg(numberIn(event, "updated"))
                      .arg(numberIn(event, "recent"))
                      .arg(numberIn(event, "failed"))
                      .arg(numberIn(event, "stopped"))
                      .arg(linksText(event)));
        if (const QString services = textIn(event, "servicesText"); _showsQueries && !services.isEmpty())
            print(services);
    }

    bool _showsQueries;
    qint64 _expected = 0;
    qint64 _ended = 0;
    QMap<QString, qint64> _faults;
};

} // namespace

EventSink eventLines()
{
    return [](const QJsonObject& event) {
        const QByteArray line = QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
        std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
        std::fflush(stdout);
    };
}

EventSink eventText(bool showsQueries)
{
    return [text = Text(showsQueries)](const QJsonObject& event) mutable { text.take(event); };
}

} // namespace quarry
