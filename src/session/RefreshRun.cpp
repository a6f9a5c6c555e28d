#include "session/RefreshRun.h"

#include "engines/ServiceHealthText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

RefreshState::End endOf(int exitStatus)
{
    using End = RefreshState::End;
    switch (exitStatus) {
    case 0:
        return End::AllUpdated;
    case 1:
        return End::NotSaved;
    case 3:
        return End::SomeNotUpdated;
    case 4:
        return End::AnotherRuns;
    case 5:
        return End::Stopped;
    default:
        return End::Failed;
    }
}

void takeEnd(const QJsonObject& event, RefreshState& state)
{
    const auto number = [&event](const char* key) { return event.value(QLatin1String(key)).toInteger(); };
    state.updated = number("updated");
    state.recent = number("recent");
    state.failed = number("failed");
    state.added = number("added");
    state.excluded = number("excluded");
    state.blacklisted = number("blacklisted");
    const QJsonArray services = event.value(QLatin1String("services")).toArray();
    for (const auto& entry : services) {
        const QString name = entry.toObject().value(QLatin1String("service")).toString();
        const std::optional<ServiceVerdict> verdict =
            verdictNamed(entry.toObject().value(QLatin1String("verdict")).toString());
        const auto* const service = std::find_if(AllSearchServices.begin(), AllSearchServices.end(),
                                                 [&](SearchService one) { return searchServiceName(one) == name; });
        if (service != AllSearchServices.end() && verdict)
            state.services.insert(*service, *verdict);
    }
}

} // namespace

RefreshRun::RefreshRun(QString updaterProgram, HomeFolder home, std::function<void()> changed)
    : _program(std::move(updaterProgram)), _home(std::move(home)), _changed(std::move(changed))
{
}

RefreshRun::~RefreshRun()
{
    if (!_process)
        return;
    _process->disconnect();
    _process->terminate();
    // A QProcess that goes away kills its child: this one is kept until the refresh has saved what it found, or this
    // program ends.
    static auto* const kept = new QSet<QProcess*>; // NOLINT: not destroyed at exit, for the same reason.
    QProcess* const leaving = _process.release();
    kept->insert(leaving);
    QObject::connect(leaving, &QProcess::finished, leaving, [leaving] {
        kept->remove(leaving);
        leaving->deleteLater();
    });
}

void RefreshRun::start(const QStringList& nodes)
{
    if (_process)
        return;
    _state = {};
    _state.isRunning = true;
    _process = std::make_unique<QProcess>();
    QProcess* const process = _process.get();
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->setStandardInputFile(QProcess::nullDevice());
    QObject::connect(process, &QProcess::readyReadStandardOutput, process, [this] { takeLines(); });
    QObject::connect(process, &QProcess::errorOccurred, process, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish(-1, _process->errorString());
    });
    QObject::connect(process, &QProcess::finished, process, [this](int status, QProcess::ExitStatus how) {
        takeLines();
        finish(how == QProcess::NormalExit ? status : -1,
               how == QProcess::NormalExit ? QString() : _process->errorString());
    });
    process->start(_program, QStringList{QStringLiteral("--home"), _home.path(), QStringLiteral("--progress")} + nodes);
    if (_process)
        _changed();
}

void RefreshRun::stop()
{
    if (!_process || std::exchange(_state.isStopping, true))
        return;
    _process->terminate();
    _changed();
}

void RefreshRun::takeLines()
{
    bool took = false;
    while (_process->canReadLine()) {
        take(_process->readLine());
        took = true;
    }
    if (took)
        _changed();
}

void RefreshRun::take(const QByteArray& line)
{
    const QJsonObject event = QJsonDocument::fromJson(line).object();
    const auto text = [&event](const char* key) { return event.value(QLatin1String(key)).toString(); };
    const QString what = text("event");
    if (what == QLatin1String("refresh-started")) {
        _state.queries = event.value(QLatin1String("queries")).toInteger();
    } else if (what == QLatin1String("query-started")) {
        _state.updating.insert(text("query"));
    } else if (what == QLatin1String("service-asked")) {
        _state.service = text("service");
        _state.title = text("title");
    } else if (what == QLatin1String("service-answered")) {
        if (const QString error = text("error"); !error.isEmpty())
            _state.serviceErrors.insert(text("service"), error);
    } else if (what == QLatin1String("query-finished")) {
        ++_state.done;
        _state.updating.remove(text("query"));
        if (const QString error = text("error"); !error.isEmpty())
            _state.faults.append(text("title") + QLatin1String(": ") + error);
    } else if (what == QLatin1String("message")) {
        _state.faults.append(text("text"));
    } else if (what == QLatin1String("save-failed")) {
        _state.faults.append(text("error"));
    } else if (what == QLatin1String("refresh-finished")) {
        takeEnd(event, _state);
    }
}

void RefreshRun::finish(int exitStatus, const QString& fault)
{
    _state.isRunning = false;
    _state.isStopping = false;
    _state.updating.clear();
    _state.end = endOf(exitStatus);
    if (!fault.isEmpty())
        _state.faults.append(fault);
    // Called from one of the process's own signals: it goes when they are through.
    _process.release()->deleteLater();
    _changed();
}

} // namespace quarry
