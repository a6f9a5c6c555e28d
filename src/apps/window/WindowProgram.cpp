#include "apps/window/WindowProgram.h"

#include "platform/SystemLog.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QEventLoop>
#include <QFileInfo>
#include <QIcon>
#include <QSessionManager>

#include <utility>

namespace quarry {

namespace {

constexpr int NotSaved = 1;

/// Over another home folder the program is another one: it must not meet the user's own on the bus.
QString identifierFor(const HomeFolder& home, bool isOwnHome)
{
    QString own = QStringLiteral("com.zep.QuarrySpotter");
    if (isOwnHome)
        return own;
    const QByteArray hash = QCryptographicHash::hash(home.path().toUtf8(), QCryptographicHash::Sha1).toHex();
    return own + QStringLiteral(".home") + QString::fromLatin1(hash.left(8));
}

QIcon iconOf(const Bundle& bundle)
{
    QIcon icon;
    for (const int size : {16, 32, 48, 64, 128, 256})
        icon.addFile(QStringLiteral("%1/appicon-%2.png").arg(bundle.resourcesFolder()).arg(size));
    return icon;
}

} // namespace

WindowProgram::WindowProgram(bool isOwnHome)
    : _isOwnHome(isOwnHome), _home(HomeFolder::ofUser()), _bundle(Bundle::ofProgram()),
      _texts(StringTable::ofProgram(QStringLiteral("Window"))),
      _updaterTexts(StringTable::ofProgram(QStringLiteral("Updater"))), _distributed(_bus),
      _instance(_bus, identifierFor(_home, isOwnHome), SingleInstance::lockFolder(_home.supportFolder()))
{
}

WindowProgram::~WindowProgram() = default;

WindowProgram::Start WindowProgram::start(const QStringList& files)
{
    _fault = _home.makeFolders();
    if (!_fault.isEmpty())
        return Start::Failed;
    switch (_instance.claim(files)) {
    case SingleInstance::Outcome::First:
        openWindow(files);
        return Start::Runs;
    case SingleInstance::Outcome::HandedOver:
        return Start::HandedOver;
    case SingleInstance::Outcome::Failed:
        break;
    }
    _fault = _texts.text(QStringLiteral("200_No answer"));
    return Start::Failed;
}

void WindowProgram::openWindow(const QStringList& files)
{
    QApplication::setWindowIcon(iconOf(_bundle));
    _window = std::make_unique<MainWindow>(
        WindowParts{{_home, _clock, _pauser, _files, _center, _timers},
                    _workspace,
                    _distributed,
                    _texts,
                    _bundle.updaterProgram(),
                    [this](bool automatic, qint64 minutes) { letAgentFollow(automatic, minutes); }});
    _blacklist = std::make_unique<BlacklistOpener>(*_window, _home, _files, _workspace, _timers);
    connect(_window.get(), &MainWindow::closed, this, [this] { end(0); });
    _updates = std::make_unique<ApplicationUpdates>(
        ApplicationUpdates::Parts{_home, QFileInfo(_bundle.contentsFolder()).path(), _clock, _timers, _distributed,
                                  _workspace, _files, _updaterTexts, [this] { quit(); }});
    connect(_window->actions().checkForUpdates, &QAction::triggered, this, [this] { _updates->checkForUpdates(); });
    _instance.setRequestHandler([this](const SingleInstance::Request& request) {
        _window->bringToFront(request.activationToken);
        _window->openFiles(request.files);
        _updates->takeUpOffer();
    });
    // An installer wants every program of the product gone but itself.
    _distributed.addObserver(QStringLiteral("QUIT_EVERYBODY_NOTIFICATION QS1"),
                             [this](const DistributedNotifications::UserInfo&) {
                                 if (!_updates->isInstalling())
                                     quit();
                             });
    connect(qApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager&) { finishForSession(); });
    _window->show();
    _window->openFiles(files);
    _updates->takeUpOffer();
}

/// The command line knows how; it takes seconds where an agent has to end first, so nothing waits for it.
void WindowProgram::letAgentFollow(bool automatic, qint64 minutes)
{
    const QString quarry = _bundle.auxiliaryExecutable(QStringLiteral("quarry"));
    if (!_isOwnHome || quarry.isEmpty())
        return; // An agent is for the user's own queries.
    _workspace.launch(quarry, {QStringLiteral("schedule"), automatic ? QStringLiteral("on") : QStringLiteral("off"),
                               QStringLiteral("every"), QString::number(minutes)});
}

void WindowProgram::finishForSession()
{
    // Nobody is there any more to answer a question, and the program may be ended as soon as this returns.
    QEventLoop loop;
    _window->finish([&loop](bool) { loop.quit(); });
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

void WindowProgram::end(int status)
{
    if (std::exchange(_hasEnded, true))
        return;
    _distributed.post(QStringLiteral("kAppWillQuitNotification"));
    QCoreApplication::exit(status);
}

void WindowProgram::quit()
{
    if (!_window)
        return end(0);
    if (std::exchange(_isQuitting, true))
        return;
    _window->finish([this](bool isSaved) {
        if (!isSaved)
            systemLog(QStringLiteral("the last changes could not be saved: ") + _window->tree().fault());
        end(isSaved ? 0 : NotSaved);
    });
    _window->hide();
}

} // namespace quarry
