#include "agent/ui/TrayWatch.h"

#include "agent/ui/TrayWindow.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QTimer>

namespace quarry {

namespace {

const QString Watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString WatcherPath = QStringLiteral("/StatusNotifierWatcher");

/// "Does a bar show the icons that the watcher knows?"; never starts a watcher.
QDBusMessage hostQuestion()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        Watcher, WatcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setArguments({Watcher, QStringLiteral("IsStatusNotifierHostRegistered")});
    question.setAutoStartService(false);
    return question;
}

} // namespace

TrayWatch::TrayWatch() = default;
TrayWatch::~TrayWatch() = default;

void TrayWatch::start(std::function<void(Kind)> found)
{
    _found = std::move(found);
    _screen = std::make_unique<TrayWindow>([this] { QTimer::singleShot(0, this, &TrayWatch::look); });
    watchBus();
    QTimer::singleShot(0, this, &TrayWatch::look);
}

void TrayWatch::watchBus()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    _bus = std::make_unique<QDBusServiceWatcher>(Watcher, bus, QDBusServiceWatcher::WatchForRegistration);
    connect(_bus.get(), &QDBusServiceWatcher::serviceRegistered, this, &TrayWatch::look);
    bus.connect(Watcher, WatcherPath, Watcher, QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(look()));
}

void TrayWatch::look()
{
    if (!_found)
        return;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        lookAtScreen();
        return;
    }
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(hostQuestion()), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (!reply.isError() && reply.value().variant().toBool())
            finish(Kind::Bus);
        else
            lookAtScreen();
    });
}

void TrayWatch::lookAtScreen()
{
    if (_screen && _screen->isThere())
        finish(Kind::Window);
}

void TrayWatch::finish(Kind kind)
{
    if (!_found)
        return;
    _screen.reset();
    _bus.reset();
    QDBusConnection::sessionBus().disconnect(Watcher, WatcherPath, Watcher,
                                             QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(look()));
    std::exchange(_found, nullptr)(kind);
}

} // namespace quarry
