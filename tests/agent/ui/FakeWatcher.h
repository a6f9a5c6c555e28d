#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QObject>
#include <QSocketNotifier>

#include <cstdio>

namespace quarry {

/// The watcher that programs register their icons with, in the process of the fake bar.
class FakeWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)

public:
    explicit FakeWatcher(bool hasHost) : _hasHost(hasHost)
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), this, QDBusConnection::ExportAllContents);
        bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
        connect(&_commands, &QSocketNotifier::activated, this, &FakeWatcher::addHost);
    }

    [[nodiscard]] bool isHostRegistered() const
    {
        say("asked");
        return _hasHost;
    }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service) { say("item " + service.toUtf8()); }

Q_SIGNALS:
    void StatusNotifierHostRegistered();

private:
    static void say(const QByteArray& line)
    {
        std::puts(line.constData());
        std::fflush(stdout);
    }

    void addHost()
    {
        _commands.setEnabled(false);
        _hasHost = true;
        Q_EMIT StatusNotifierHostRegistered();
    }

    bool _hasHost;
    QSocketNotifier _commands{0, QSocketNotifier::Read};
};

/// Plays a bar that shows status notifier items until it is killed. It prints "asked" when somebody asked whether it
/// shows them, and "item NAME" for each that registers. With "--host" it shows them from the start, without it from
/// the line "host" on.
inline int runFakeBar(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const FakeWatcher watcher(QCoreApplication::arguments().contains(QStringLiteral("--host")));
    return QCoreApplication::exec();
}

} // namespace quarry
