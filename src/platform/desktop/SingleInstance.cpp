#include "platform/desktop/SingleInstance.h"

#include "platform/FileStore.h"
#include "platform/SystemLog.h"
#include "platform/desktop/ApplicationObject.h"
#include "platform/desktop/SessionBus.h"

#include <QCryptographicHash>
#include <QDBusMessage>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>
#include <QUuid>

namespace quarry {

namespace {

const QLatin1String BusName("org.freedesktop.DBus");
const QLatin1String Interface("org.freedesktop.Application");
const QLatin1String Ending(".request");
constexpr int LongestAnswer = 5000; // milliseconds
/// What an earlier instance left behind unread is not wanted any more.
constexpr qint64 OldestRequest = 60; // seconds
constexpr qint64 LongestRequest = 1 << 20;

QString objectPath(QString identifier)
{
    identifier.replace(u'.', u'/').replace(u'-', u'_');
    return u'/' + identifier;
}

QDBusMessage busCall(const QString& method, const QVariantList& arguments)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(BusName, QStringLiteral("/org/freedesktop/DBus"), BusName, method);
    message.setArguments(arguments);
    return message;
}

QDBusMessage callFor(const QString& identifier, const SingleInstance::Request& request)
{
    const bool opens = !request.files.isEmpty();
    QDBusMessage message = QDBusMessage::createMethodCall(identifier, objectPath(identifier), Interface,
                                                          opens ? QStringLiteral("Open") : QStringLiteral("Activate"));
    message.setAutoStartService(false);
    QVariantList arguments;
    if (opens) {
        QStringList uris;
        for (const QString& file : request.files)
            uris += QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded);
        arguments += uris;
    }
    arguments += ApplicationObject::platformData(request.activationToken);
    message.setArguments(arguments);
    return message;
}

/// Given by whatever started this program.
QString tokenOfEnvironment()
{
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qEnvironmentVariable("DESKTOP_STARTUP_ID") : token;
}

QByteArray bytesOf(const SingleInstance::Request& request)
{
    return QJsonDocument(QJsonObject{{QStringLiteral("files"), QJsonArray::fromStringList(request.files)},
                                     {QStringLiteral("token"), request.activationToken}})
        .toJson(QJsonDocument::Compact);
}

SingleInstance::Request requestIn(const QByteArray& bytes)
{
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    SingleInstance::Request request;
    for (const QJsonValue& file : object.value(QLatin1String("files")).toArray())
        request.files += file.toString();
    request.activationToken = object.value(QLatin1String("token")).toString();
    return request;
}

} // namespace

SingleInstance::SingleInstance(SessionBus& bus, QString identifier, QString folder)
    : _bus(bus), _identifier(std::move(identifier))
{
    const QByteArray home = QCryptographicHash::hash(QDir::homePath().toUtf8(), QCryptographicHash::Sha1).toHex();
    const QString base = folder + u'/' + _identifier + u'-' + QString::fromLatin1(home.left(8));
    _lockFile = base + QStringLiteral(".lock");
    _requestFolder = base + QStringLiteral(".requests");
    connect(&_watcher, &QFileSystemWatcher::directoryChanged, this, &SingleInstance::takeRequests);
    connect(&_bus, &SessionBus::connected, this, &SingleInstance::publish);
}

SingleInstance::~SingleInstance()
{
    if (!_lock || !_bus.isConnected())
        return;
    _bus.connection().unregisterObject(objectPath(_identifier));
    _bus.connection().send(busCall(QStringLiteral("ReleaseName"), {_identifier}));
}

QString SingleInstance::lockFolder(const QString& fallback)
{
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return folder.startsWith(u'/') && QFileInfo(folder).isWritable() ? folder : fallback;
}

SingleInstance::Outcome SingleInstance::claim(const QStringList& files)
{
    const Request request{files, tokenOfEnvironment()};
    _lock = FileLock::tryAcquire(_lockFile);
    if (!_lock)
        return handOver(request);
    watchFolder();
    new ApplicationObject(*this);
    if (!takeName()) {
        _lock.reset();
        return handOver(request);
    }
    return Outcome::First;
}

/// False when another program of that name is on the bus.
bool SingleInstance::takeName()
{
    if (!_bus.isConnected())
        return true;
    _bus.connection().registerObject(objectPath(_identifier), findChild<ApplicationObject*>(),
                                     QDBusConnection::ExportAllSlots);
    constexpr uint DoNotQueue = 4;
    constexpr uint Exists = 3;
    const QDBusMessage reply = _bus.connection().call(busCall(QStringLiteral("RequestName"), {_identifier, DoNotQueue}),
                                                      QDBus::Block, LongestAnswer);
    return reply.type() != QDBusMessage::ReplyMessage || reply.arguments().value(0).toUInt() != Exists;
}

/// On a bus that came late or came again.
void SingleInstance::publish()
{
    if (_lock && !takeName())
        systemLog(QStringLiteral("another program is %1 on the session bus").arg(_identifier));
}

void SingleInstance::watchFolder()
{
    if (!QDir().mkpath(_requestFolder))
        return;
    QFile::setPermissions(_requestFolder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    _watcher.addPath(_requestFolder);
    // One may have come between the lock and the watch.
    QMetaObject::invokeMethod(this, &SingleInstance::takeRequests, Qt::QueuedConnection);
}

void SingleInstance::takeRequests()
{
    if (!_lock)
        return;
    const QDateTime oldest = QDateTime::currentDateTimeUtc().addSecs(-OldestRequest);
    const QFileInfoList found =
        QDir(_requestFolder).entryInfoList({u'*' + QString(Ending)}, QDir::Files, QDir::Time | QDir::Reversed);
    for (const QFileInfo& entry : found) {
        const bool isWanted = entry.lastModified() >= oldest;
        QFile file(entry.filePath());
        const bool isRead = file.open(QIODevice::ReadOnly);
        const QByteArray bytes = file.read(LongestRequest);
        if (file.remove() && isRead && isWanted)
            handle(requestIn(bytes));
    }
}

void SingleInstance::handle(const Request& request)
{
    if (_handler)
        _handler(request);
}

SingleInstance::Outcome SingleInstance::handOver(const Request& request)
{
    if (_bus.isConnected()) {
        const QDBusMessage reply = _bus.connection().call(callFor(_identifier, request), QDBus::Block, LongestAnswer);
        if (reply.type() == QDBusMessage::ReplyMessage)
            return Outcome::HandedOver;
        const QString error = reply.errorName();
        if (error != QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") &&
            error != QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner"))
            return Outcome::Failed;
    }
    // The one that runs does so without a bus, or has not come that far yet.
    return writeRequest(request) ? Outcome::HandedOver : Outcome::Failed;
}

bool SingleInstance::writeRequest(const Request& request)
{
    const QString path = _requestFolder + u'/' + QUuid::createUuid().toString(QUuid::Id128) + Ending;
    return DiskFileStore().create(path, QStringLiteral(".new-"), 0600, bytesOf(request)).ok();
}

} // namespace quarry
