#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace quarry::test {

/// A session bus of the test's own, on which nothing of the machine is started. For as long as it lives, the
/// environment names it; nothing reaches the session of whoever runs the test.
class SessionBusDaemon final {
public:
    SessionBusDaemon()
    {
        QFile config(_folder.filePath(QStringLiteral("bus.conf")));
        if (config.open(QIODevice::WriteOnly)) {
            config.write("<busconfig><type>session</type><listen>" + address() +
                         "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                         "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
        }
        config.close();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address());
        start();
    }
    ~SessionBusDaemon()
    {
        stop();
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    }
    SessionBusDaemon(const SessionBusDaemon&) = delete;
    SessionBusDaemon& operator=(const SessionBusDaemon&) = delete;

    [[nodiscard]] bool isRunning() const { return _daemon.state() == QProcess::Running; }
    [[nodiscard]] QByteArray address() const { return "unix:path=" + _folder.filePath(QStringLiteral("bus")).toUtf8(); }

    /// Returns once it can be connected to.
    void start()
    {
        QFile::remove(_folder.filePath(QStringLiteral("bus")));
        _daemon.setProgram(QStringLiteral("dbus-daemon"));
        _daemon.setArguments({QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                              QStringLiteral("--config-file=") + _folder.filePath(QStringLiteral("bus.conf"))});
        _daemon.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        _daemon.start();
        _daemon.waitForReadyRead(60000);
    }
    void stop()
    {
        _daemon.kill();
        _daemon.waitForFinished(60000);
    }

private:
    QTemporaryDir _folder;
    QProcess _daemon;
};

} // namespace quarry::test
