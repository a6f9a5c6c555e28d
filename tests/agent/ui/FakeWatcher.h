#pragma once

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

} // namespace quarry
