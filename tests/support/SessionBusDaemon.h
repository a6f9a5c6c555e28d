#pragma once

#include <QElapsedTimer>
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

/// What an installer asks of every program of the product, until that process has ended: it may not listen yet the
/// first time.
inline void askEverybodyToQuit(QProcess& process)
{
    QElapsedTimer timer;
    timer.start();
    while (process.state() != QProcess::NotRunning && timer.elapsed() < 60000) {
        QProcess::execute(QStringLiteral("dbus-send"), {QStringLiteral("--session"), QStringLiteral("--type=signal"),
                                                        QStringLiteral("/com/zep/QuarrySpotter/Notifications"),
                                                        QStringLiteral("com.zep.QuarrySpotter.Notifications.Posted"),
                                                        QStringLiteral("string:QUIT_EVERYBODY_NOTIFICATION QS1"),
                                                        QStringLiteral("dict:string:string:by,a test")});
        process.waitForFinished(100);
    }
}

} // namespace quarry::test
