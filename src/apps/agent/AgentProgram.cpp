#include "apps/agent/AgentProgram.h"

#include "apps/agent/TerminalListing.h"
#include "log/LXLogger.h"
#include "platform/SystemLog.h"
#include "platform/SystemVersion.h"
#include "updater/ui/LXUpdaterController.h"

#include <QCoreApplication>

#include <utility>

namespace quarry {

namespace {

QString resourceOf(const AgentBundle& bundle, const QString& name)
{
    return bundle.path + QStringLiteral("/Contents/Resources/") + name;
}

DesktopNotifications::Sender senderFor(const AgentBundle& bundle, const StringTable& texts)
{
    return {QStringLiteral("QuarrySpotter"), resourceOf(bundle, QStringLiteral("appicon-128.png")),
            QStringLiteral("com.zep.QuarrySpotter"), texts.text(QStringLiteral("100_Open menu string"))};
}

void reportNoTray()
{
    systemLog(QStringLiteral("this desktop has no status bar for icons; the schedule is kept, and notifications tell "
                             "what is new"));
}

} // namespace

AgentProgram::AgentProgram()
    : _bundle(AgentBundle::at(Bundle::ofProgram().bundlePath())), _home(HomeFolder::ofUser()),
      _texts(StringTable::ofProgram()), _updaterTexts(StringTable::ofProgram(QStringLiteral("Updater"))),
      _distributed(_bus), _notifications(_bus, senderFor(_bundle, _texts)),
      _statusItem(_texts, resourceOf(_bundle, QString()), reportNoTray), _updaterDefaults(_home, _files),
      _results(DatabaseReader(_home, _files),
               [this](DatabaseResults::Work work) { _databaseReading.run(std::move(work)); }),
      _updates([this] { return makeUpdater(); }), _menu(parts())
{
}

AgentParts AgentProgram::parts()
{
    return {_bundle,
            _home,
            operatingSystemVersion(),
            _clock,
            _files,
            _events,
            _processes,
            _workspace,
            _distributed,
            _notifications,
            _loginItems,
            _statusItem,
            _alerts,
            _results,
            _updates,
            _log,
            _texts,
            _updaterTexts,
            [] { QCoreApplication::exit(0); },
            [this] { openWithoutMainApplication(); }};
}

void AgentProgram::ProductLog::logString(const QString& text)
{
    LXLogger::defaultLogger().logString(text);
}

std::unique_ptr<LXUpdater> AgentProgram::makeUpdater()
{
    ProductInfo product = productInfoOfBundle(_bundle.mainApplication());
    const auto makeWindow = [this, version = product.version] {
        return std::make_unique<LXUpdaterController>(
            LXUpdaterController::Parts{version, _clock, _events, _updaterTexts, makeUpdateLoader,
                                       [this](const QString& address) { _workspace.openAddress(address); }});
    };
    // The main application installs: it takes up the offer that was accepted here.
    return std::make_unique<LXUpdater>(UpdaterParts{std::move(product), _clock, _events, _distributed, _updaterDefaults,
                                                    _updaterAlerts, _updaterTexts, makeUpdateLoader, makeWindow,
                                                    nullptr});
}

void AgentProgram::start(const QStringList& files)
{
    for (const QString& file : files) {
        if (!_menu.openFile(file))
            systemLog(QStringLiteral("%1 was not opened").arg(file));
    }
    _menu.awakeFromNib();
}

void AgentProgram::openWithoutMainApplication()
{
    if (!listInTerminal(_workspace, _bundle.mainApplication()))
        _notifications.deliver(
            {QStringLiteral("QuarrySpotter"), _texts.text(QStringLiteral("100_No main application"))});
}

} // namespace quarry
