#include "apps/quarry/UpdateRun.h"

#include "agent/DesktopSession.h"
#include "platform/Bundle.h"
#include "platform/Terminal.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <utility>

namespace quarry {

namespace {

TerminalUpdateWindow::Offer offerFor(UpdateRun::Mode mode)
{
    if (mode == UpdateRun::Mode::Install)
        return TerminalUpdateWindow::Offer::Accept;
    return isTerminal(stdin) && isTerminal(stdout) ? TerminalUpdateWindow::Offer::Ask
                                                   : TerminalUpdateWindow::Offer::Tell;
}

QString productBundle()
{
    const QString contents = Bundle::ofProgram().contentsFolder();
    return contents.isEmpty() ? QString() : QFileInfo(contents).path();
}

} // namespace

void UpdateRun::Messages::show(const UpdaterAlert& alert, std::function<void(int)> answered)
{
    _text = alert.title + QStringLiteral(". ") + alert.message;
    if (answered && alert.buttons.size() == 1)
        _events.post([answered = std::move(answered)] { answered(0); });
}

UpdateRun::UpdateRun(Session& session, Mode mode)
    : _session(session), _mode(mode), _bundlePath(productBundle()),
      _texts(StringTable::ofProgram(QStringLiteral("Updater"))), _line(StatusLine::Voice::Lines), _notifications(_bus),
      _messages(_events), _defaults(session.home(), session.files()),
      _installation(
          session.home(), _bundlePath, _workspace, [] { QCoreApplication::exit(); },
          [this](const QString& bundle) { return openNewVersion(bundle); })
{
    LXUpdater::setDefaultUpdater(std::make_unique<LXUpdater>(updaterParts()));
    LXUpdater& updater = LXUpdater::defaultUpdater();
    updater.setProductReference(QStringLiteral("QS1"));
    updater.setManualUpdate(true);
    updater.setCheckEndedHandler([this](UpdateCheckEnd checked) { checkEnded(checked); });
    updater.setInstallationEndedHandler([this](UpdateInstallation::End ended) { installationEnded(ended); });
    _notifications.addObserver(QStringLiteral("QUIT_EVERYBODY_NOTIFICATION QS1"),
                               [this](const DistributedNotifications::UserInfo&) {
                                   if (!LXUpdater::defaultUpdater().isInstalling())
                                       stop();
                               });
}

UpdateRun::~UpdateRun()
{
    LXUpdater::setDefaultUpdater(nullptr);
}

UpdaterParts UpdateRun::updaterParts()
{
    ProductInfo product = productInfoOfBundle(_bundlePath);
    std::function<std::unique_ptr<UpdaterWindow>()> makeWindow;
    if (_mode != Mode::Check)
        makeWindow = [this, version = product.version] {
            return std::make_unique<TerminalUpdateWindow>(windowParts(version));
        };
    return {std::move(product), _session.clock(), _events,          _notifications, _defaults,
            _messages,          _texts,           makeUpdateLoader, makeWindow,     &_installation.parts()};
}

TerminalUpdateWindow::Parts UpdateRun::windowParts(const QString& version)
{
    return {version, offerFor(_mode), _session.clock(), _events, _texts, _line, [this] { end(Outcome::done()); }};
}

/// The command itself is no part of what is to be opened, so nothing has to wait for its end.
bool UpdateRun::openNewVersion(const QString& bundlePath)
{
    return !whyNoScreen().isEmpty() || _workspace.openBundle(bundlePath);
}

Outcome UpdateRun::run()
{
    if (_bundlePath.isEmpty())
        return Outcome::failed(QStringLiteral("this program does not lie in QuarrySpotter's bundle"));
    // The offer that was accepted in the status bar is made here.
    if (_mode != Mode::Check)
        QFile::remove(_session.home().updaterFlagFile());
    _events.post([] { LXUpdater::defaultUpdater().checkVersionAsynchronous(); });
    QCoreApplication::exec();
    _line.clear();
    return _outcome.value_or(Outcome::failed(QStringLiteral("stopped")));
}

void UpdateRun::stop()
{
    LXUpdater& updater = LXUpdater::defaultUpdater();
    if (updater.isUpdating())
        updater.cancelUpdate();
    else
        end(Outcome::failed(QStringLiteral("stopped")));
}

void UpdateRun::end(Outcome outcome)
{
    if (!_outcome)
        _outcome = std::move(outcome);
    QCoreApplication::exit();
}

void UpdateRun::checkEnded(UpdateCheckEnd checked)
{
    const LXUpdater& updater = LXUpdater::defaultUpdater();
    switch (checked) {
    case UpdateCheckEnd::NoReply:
        return end(Outcome::failed(QStringLiteral("the update script does not answer")));
    case UpdateCheckEnd::NoInformation:
        return end(Outcome::failed(QStringLiteral("the update script's answer makes no sense")));
    case UpdateCheckEnd::NeedsNewerSystem:
        return end(Outcome::done(_texts.text(QStringLiteral("Updater_1.0_New version for recent os  message"))));
    case UpdateCheckEnd::NoUpdates:
    case UpdateCheckEnd::NothingNew:
        return end(Outcome::done(_messages.text()));
    case UpdateCheckEnd::Offered:
        if (_mode == Mode::Check)
            end(Outcome::done(
                QStringLiteral("QuarrySpotter %1 is available; you have %2. To install it: quarry update")
                    .arg(updater.updateInfos().value_or(UpdateInfos()).curentVersion, updater.product().version)));
        return;
    }
}

void UpdateRun::installationEnded(UpdateInstallation::End ended)
{
    const QString fault = LXUpdater::defaultUpdater().installationFault();
    switch (ended) {
    case UpdateInstallation::End::Installed:
        return end(Outcome::done(_messages.text()));
    case UpdateInstallation::End::Cancelled:
        return end(Outcome::failed(QStringLiteral("stopped; nothing was changed")));
    case UpdateInstallation::End::Failed:
        return end(Outcome::failed(fault.isEmpty() ? _messages.text() : fault));
    }
}

} // namespace quarry
