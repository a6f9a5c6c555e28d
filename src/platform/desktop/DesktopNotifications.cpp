#include "platform/desktop/DesktopNotifications.h"

#include "platform/SystemLog.h"
#include "platform/desktop/SessionBus.h"

#include <QDBusPendingCallWatcher>

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

const QLatin1String Service("org.freedesktop.Notifications");
const QLatin1String Path("/org/freedesktop/Notifications");
const QLatin1String ClickAction("default");
/// Servers show a few lines; some choke on whole books.
constexpr qsizetype LongestText = 4000;

/// Without the characters that no server can show, and within bounds.
QString shownText(const QString& text)
{
    QString shown;
    for (const QChar character : text) {
        if (character.unicode() >= 0x20 || character == u'\n' || character == u'\t')
            shown += character;
    }
    if (shown.size() > LongestText)
        shown = shown.left(LongestText) + QChar(0x2026);
    return shown.trimmed();
}

struct Texts {
    QString summary;
    QString body;
};

/// The body as markup where the server reads it as such; within the summary where it shows no body.
Texts textsFor(const UserNotification& notification, const QStringList& capabilities)
{
    Texts texts{shownText(notification.title).simplified(), shownText(notification.informativeText)};
    if (!capabilities.contains(QLatin1String("body"))) {
        if (!texts.body.isEmpty())
            texts.summary += QStringLiteral(": ") + std::exchange(texts.body, QString()).simplified();
    } else if (capabilities.contains(QLatin1String("body-markup"))) {
        texts.body = texts.body.toHtmlEscaped();
    }
    return texts;
}

/// The server that was meant had gone before the call came.
bool neverArrived(const QDBusMessage& reply)
{
    return reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown");
}

} // namespace

DesktopNotifications::DesktopNotifications(SessionBus& bus, Sender sender) : _bus(bus), _sender(std::move(sender))
{
    connect(&bus, &SessionBus::connected, this, &DesktopNotifications::listen);
    connect(&bus, &SessionBus::lost, this, &DesktopNotifications::forgetServer);
    listen();
}

DesktopNotifications::~DesktopNotifications()
{
    removeAllDelivered();
}

void DesktopNotifications::listen()
{
    // Without the service's name: given it, the library would wait for the bus to say who that is.
    QDBusConnection& connection = _bus.connection();
    connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
                       QStringLiteral("NameOwnerChanged"), {Service}, QStringLiteral("sss"), this,
                       SLOT(onOwnerChanged(QDBusMessage)));
    connection.connect(QString(), Path, Service, QStringLiteral("NotificationClosed"), this,
                       SLOT(onClosed(QDBusMessage)));
    connection.connect(QString(), Path, Service, QStringLiteral("ActionInvoked"), this, SLOT(onAction(QDBusMessage)));
}

void DesktopNotifications::forgetServer()
{
    ++_serverCount;
    _server.clear();
    _capabilities.reset();
    _isAsking = false;
    _waiting.clear();
    _onTheirWay = 0;
    _closedEarly.clear();
    _delivered.clear();
}

void DesktopNotifications::deliver(const UserNotification& notification)
{
    if (!_bus.isConnected()) {
        debugLog(QStringLiteral("no notification is shown: there is no session bus"));
        return;
    }
    _waiting.append(notification);
    if (_capabilities)
        sendWaiting();
    else
        askCapabilities();
}

void DesktopNotifications::askCapabilities()
{
    if (std::exchange(_isAsking, true))
        return;
    call(QStringLiteral("GetCapabilities"), {},
         [this, asked = _waiting.size()](const QDBusMessage& reply, bool isCurrent) {
             if (!isCurrent)
                 return;
             _isAsking = false;
             if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == QLatin1String("as")) {
                 _server = reply.service();
                 _capabilities = reply.arguments().first().toStringList();
                 sendWaiting();
             } else {
                 debugLog(QStringLiteral("no notification is shown: %1").arg(reply.errorMessage()));
                 _waiting.remove(0, std::min(asked, _waiting.size()));
                 if (!_waiting.isEmpty())
                     askCapabilities(); // a server may have come since
             }
         });
}

void DesktopNotifications::sendWaiting()
{
    for (const UserNotification& notification : std::exchange(_waiting, {}))
        send(notification);
}

void DesktopNotifications::send(const UserNotification& notification)
{
    const Texts texts = textsFor(notification, *_capabilities);
    QStringList actions;
    if (_capabilities->contains(QLatin1String("actions")))
        actions = {ClickAction, _sender.openAction};
    const QVariantMap hints = {{QStringLiteral("desktop-entry"), _sender.desktopId},
                               {QStringLiteral("urgency"), QVariant::fromValue(uchar(1))}};
    constexpr uint NothingReplaced = 0;
    constexpr int AsTheServerLikes = -1;
    ++_onTheirWay;
    call(QStringLiteral("Notify"),
         {_sender.name, NothingReplaced, _sender.icon, texts.summary, texts.body, actions, hints, AsTheServerLikes},
         [this, notification, round = _round](const QDBusMessage& reply, bool isCurrent) {
             if (isCurrent)
                 sent(reply, round);
             if (neverArrived(reply) && round == _round)
                 deliver(notification); // another server may have taken the place of the one that went
         });
}

void DesktopNotifications::sent(const QDBusMessage& reply, unsigned round)
{
    --_onTheirWay;
    if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == QLatin1String("u")) {
        const Identifier number = reply.arguments().first().toUInt();
        if (!_closedEarly.contains(number) && !_delivered.contains(number))
            _delivered.append(number);
        if (round != _round)
            remove(number);
    } else {
        debugLog(QStringLiteral("a notification is not shown: %1").arg(reply.errorMessage()));
        if (neverArrived(reply))
            forgetServer();
    }
    if (_onTheirWay == 0)
        _closedEarly.clear();
}

void DesktopNotifications::remove(Identifier notification)
{
    if (_delivered.removeOne(notification))
        close(notification);
}

void DesktopNotifications::removeAllDelivered()
{
    ++_round;
    _waiting.clear();
    for (const Identifier notification : std::exchange(_delivered, {}))
        close(notification);
}

void DesktopNotifications::close(Identifier notification)
{
    call(QStringLiteral("CloseNotification"), {notification}, [](const QDBusMessage&, bool) {});
}

void DesktopNotifications::call(const QString& method, const QVariantList& arguments, Reply reply)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(_server.isEmpty() ? QString(Service) : _server, Path, Service, method);
    message.setArguments(arguments);
    auto* watcher = new QDBusPendingCallWatcher(_bus.connection().asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, reply = std::move(reply), server = _serverCount] {
                watcher->deleteLater();
                reply(watcher->reply(), server == _serverCount);
            });
}

bool DesktopNotifications::isFromServer(const QDBusMessage& message) const
{
    return !_server.isEmpty() && message.service() == _server;
}

void DesktopNotifications::onOwnerChanged(const QDBusMessage& message)
{
    // A server that comes up because it is being asked is no loss.
    if (message.service() == QLatin1String("org.freedesktop.DBus") && !_server.isEmpty() &&
        message.arguments().value(2).toString() != _server)
        forgetServer();
}

void DesktopNotifications::onClosed(const QDBusMessage& message)
{
    const Identifier notification = message.arguments().value(0).toUInt();
    if (isFromServer(message) && !_delivered.removeOne(notification) && _onTheirWay > 0)
        _closedEarly.insert(notification);
}

void DesktopNotifications::onAction(const QDBusMessage& message)
{
    const Identifier notification = message.arguments().value(0).toUInt();
    if (!isFromServer(message) || message.arguments().value(1).toString() != ClickAction ||
        !_delivered.contains(notification))
        return;
    // Some servers leave a notification standing that was clicked.
    remove(notification);
    if (_onActivation)
        _onActivation(notification);
}

} // namespace quarry
