#include "IdleAgent.h"

#include "database/QueryDatabaseEngine.h"
#include "platform/NotificationCenter.h"
#include "platform/Pauser.h"
#include "platform/SystemVersion.h"

#include <QCoreApplication>

#include <cstdlib>
#include <utility>

namespace quarry::bench {

namespace {

constexpr qint64 MinutesOfMonth = 43200;

QString resources()
{
    return IdleHome::bundle() + QStringLiteral("/Contents/Resources");
}

/// A benchmark without its home folder measures nothing.
void require(const QString& fault)
{
    if (fault.isEmpty())
        return;
    std::fprintf(stderr, "%s\n", qUtf8Printable(fault));
    std::exit(1);
}

} // namespace

IdleHome::IdleHome()
{
    DiskFileStore files;
    const Schedule schedule(home(), files);
    require(schedule.setAutomatic(true));
    require(schedule.setPeriodicityMinutes(MinutesOfMonth));
    require(schedule.setLastUpdate(SystemClock().now()));
    PropertyListFile file(home().scheduleFile(), home().writerLockFile(), files);
    require(file.change(
        [](PlistValue::Dictionary& entries) { entries.insert(QStringLiteral("pref_checkForUpdates"), false); }));
}

QString IdleHome::bundle()
{
    return QStringLiteral(QUARRY_BUNDLE_DIR "/Agents/QuarrySpotterAgent.app");
}

void IdleHome::addUnreadResult() const
{
    SystemClock clock;
    ThreadPauser pauser;
    DiskFileStore files;
    NotificationCenter center;
    QueryDatabaseEngine engine({home(), clock, pauser, files, center, nullptr, {}},
                               QueryDatabaseEngine::AtEnd::Discard);
    require(engine.edit([](QueryDatabaseEngine& database) {
        const QueryCorePtr query = QueryCore::initWithQuery(QStringLiteral("mountain water"));
        database.rootQuery()->addChild(query);
        const bool isKept = query->replaceResultsIfUnchanged(
            query->snapshot().generation, {ResultRecord().withTitle(QStringLiteral("Springs"))}, Date(1.0));
        return isKept ? QString() : QStringLiteral("no result was added");
    }));
}

IdleAgent::IdleAgent(const IdleHome& home)
    : _home(home.home()), _texts(resources(), {QStringLiteral("en")}),
      _notifications(_bus, {QStringLiteral("QuarrySpotter"), {}, {}, {}}),
      _loginItems(home.path() + QStringLiteral("/autostart")), _statusItem(_texts, resources()),
      _results(DatabaseReader(_home, _files),
               [this](DatabaseResults::Work work) { _databaseReading.run(std::move(work)); }),
      _menu(parts())
{
    _menu.awakeFromNib();
}

AgentParts IdleAgent::parts()
{
    return {_bundle,        _home,       operatingSystemVersion(),
            _clock,         _files,      _events,
            _processes,     _workspace,  _distributed,
            _notifications, _loginItems, _statusItem,
            _alerts,        _results,    _updates,
            _log,           _texts,      _texts,
            [] {},          {}};
}

void IdleAgent::tick(int count)
{
    for (int i = 0; i < count; ++i) {
        _clock.ahead += 1.0;
        _menu.checkProcessProgram();
        _menu.loopTimer();
        QCoreApplication::processEvents();
        // A second of the real agent is time enough for a look at the database.
        while (_menu.state().awaitsNews)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

} // namespace quarry::bench
