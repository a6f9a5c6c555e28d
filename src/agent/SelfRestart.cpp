#include "agent/SelfRestart.h"

#include "platform/SystemLog.h"

namespace quarry {

namespace {

constexpr std::chrono::seconds BetweenLooks(5);

} // namespace

void SelfRestart::autoRelaunchDaemon()
{
    if (!_waiting && !_parts.isBusy())
        lookAgain();
}

void SelfRestart::lookAgain()
{
    // The first tick after the main application has quit may have started a refresh that was overdue.
    _waiting = _parts.mainAppRuns() || _parts.isBusy();
    if (_waiting)
        _parts.events.after(BetweenLooks, [this] { lookAgain(); });
    else
        relaunch();
}

void SelfRestart::relaunch()
{
    const QString helper = _parts.bundle.relaunchHelper();
    const QStringList arguments{_parts.bundle.path, QString::number(_parts.ownProcessId)};
    if (helper.isEmpty() || !_parts.workspace.launch(helper, arguments))
        systemLog(QStringLiteral("%1: relaunch path error.").arg(QStringLiteral("QSMenu::autoRelaunchDaemon")));
    else
        _parts.terminate();
}

} // namespace quarry
