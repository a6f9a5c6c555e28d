#pragma once

#include "apps/desktop/MainApplicationStandIn.h"
#include "archive/PropertyList.h"
#include "platform/desktop/DBusNotifications.h"
#include "platform/desktop/SessionBus.h"
#include "support/EventWait.h"
#include "support/QuarryProcess.h"
#include "support/TemporaryHome.h"
#include "support/Tray.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QWidget>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace quarry::test {

using namespace Qt::Literals::StringLiterals;

/// A copy of the product's bundle that a test may take apart. Its files are links, so that it costs nothing.
class BundleCopy final {
public:
    BundleCopy() { makeAt(path()); }
    [[nodiscard]] QString path() const { return _folder.filePath(u"QuarrySpotter.app"_s); }
    [[nodiscard]] QString agentProgram() const { return programs() + u"QuarrySpotterAgent"_s; }
    [[nodiscard]] QString updaterProgram() const
    {
        return programs() + u"QuarrySpotterUpdater.app/Contents/bin/QuarrySpotterUpdater"_s;
    }
    void remove() const { EXPECT_TRUE(QDir(path()).removeRecursively()); }
    /// As an installer does it: the new one takes the old one's place when it is complete.
    void replace() const
    {
        const QString fresh = _folder.filePath(u"new.app"_s);
        const QString old = _folder.filePath(u"old.app"_s);
        makeAt(fresh);
        EXPECT_TRUE(QFile::rename(path(), old) && QFile::rename(fresh, path()));
        EXPECT_TRUE(QDir(old).removeRecursively());
    }

private:
    static void link(const QString& options, const QString& from, const QString& to)
    {
        EXPECT_EQ(QProcess::execute(u"cp"_s, {options, from, to}), 0);
    }
    static void makeAt(const QString& path)
    {
        link(u"-al"_s, QStringLiteral(QUARRY_BUNDLE_DIR "/.."), path);
        // The stand-in in place of the main application.
        const QString program = path + u"/Contents/bin/QuarrySpotter"_s;
        QFile::remove(program);
        link(u"-l"_s, QCoreApplication::applicationFilePath(), program);
    }
    [[nodiscard]] QString programs() const
    {
        return path() + u"/Contents/Agents/QuarrySpotterAgent.app/Contents/bin/"_s;
    }

    // Beside the bundle: links do not reach another file system.
    QTemporaryDir _folder{QStringLiteral(QUARRY_BUNDLE_DIR "/../../copy-XXXXXX")};
};

/// Real programs on a real desktop: a tray, a notification server, and the session bus that everything talks over.
class AgentOnDesktop : public ::testing::Test {
protected:
    AgentOnDesktop()
    {
        for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qunsetenv(variable);
        qputenv("HOME", home.path().toUtf8());
        wallpaper.setPalette(QColor(62, 84, 98));
        wallpaper.setWindowFlag(Qt::X11BypassWindowManagerHint);
        wallpaper.setGeometry(QGuiApplication::primaryScreen()->geometry());
        wallpaper.show();
        everybody.addObserver(MainApplicationStandIn::openedNotification(),
                              [this](const auto& userInfo) { opened.append(userInfo.value(u"arguments"_s)); });
        EXPECT_EQ(quarry({u"prefs"_s, u"--results-per-service"_s, u"10"_s}).status, 0);
    }

    // --- Programs
    static Ran quarry(const QStringList& arguments) { return runQuarry(QString(), arguments); }
    using Program = std::unique_ptr<QProcess>;
    static Program start(const QString& path, const QStringList& arguments = {})
    {
        auto program = std::make_unique<QProcess>();
        program->setProcessChannelMode(QProcess::MergedChannels);
        program->start(path, arguments);
        EXPECT_TRUE(program->waitForStarted());
        return program;
    }
    [[nodiscard]] Program startAgent(const QStringList& arguments = {}) const
    {
        return start(bundle.agentProgram(), arguments);
    }
    /// The agent that runs over the home folder; 0 when none does.
    static qint64 agentProcess()
    {
        const QJsonObject status = quarry({u"agent"_s, u"status"_s, u"--json"_s}).json();
        return status[u"process"_s].toInteger();
    }
    static bool lives(const Program& program) { return program->state() == QProcess::Running; }
    /// The exit status once it has ended; -1 when it does not end, or crashed.
    static int statusOf(const Program& program)
    {
        const bool ended = waitFor([&] { return !lives(program); });
        return ended && program->exitStatus() == QProcess::NormalExit ? program->exitCode() : -1;
    }
    /// The ids of the processes that run a program of that name.
    static QList<qint64> processesNamed(const QString& name)
    {
        QList<qint64> found;
        for (const QString& process : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
            const QString file = QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(process));
            if (file.section(u'/', -1).remove(u" (deleted)"_s) == name)
                found.append(process.toLongLong());
        }
        return found;
    }

    // --- The schedule
    void schedule(const QByteArray& entries) const
    {
        EXPECT_TRUE(
            writeFile(home->scheduleFile(), "<plist version=\"1.0\"><dict><key>pref_checkForUpdates</key><false/>" +
                                                entries + "</dict></plist>"));
    }
    /// On, every hour, and never made: the first refresh is due at once.
    void scheduleDueRefresh() const
    {
        schedule("<key>pref_automatic_ON</key><true/><key>pref_automatic_periodicity</key><integer>60</integer>");
    }
    /// On, with nothing due for an hour.
    void scheduleNothingDue() const
    {
        const auto now = QByteArray::number(SystemClock().now().secondsSinceReference(), 'f', 0);
        schedule("<key>pref_automatic_ON</key><true/><key>pref_automatic_periodicity</key><integer>60</integer>"
                 "<key>pref_lastUpdate</key><real>" +
                 now + "</real>");
    }

    // --- The screen
    /// Where the tray draws: nothing else is at the top of the screen.
    static QRect trayIcon()
    {
        const QImage bar = screenshot().copy(0, 0, 1280, 40);
        QRect icon;
        for (int x = 0; x < bar.width(); ++x) {
            for (int y = 0; y < bar.height(); ++y) {
                const QColor color = bar.pixelColor(x, y);
                if (color.lightness() > 128)
                    icon |= QRect(x, y, 1, 1);
            }
        }
        return icon;
    }
    static bool trayShowsIcon() { return trayIcon().width() > 8; }
    /// A notification server that shows at a known place and does what a click asks for.
    [[nodiscard]] DesktopProgram notificationServer() const
    {
        const QString config = home.path() + u"/dunstrc"_s;
        EXPECT_TRUE(writeFile(config, "[global]\norigin = top-right\noffset = 250x20\nwidth = 330\n"
                                      "font = Sans 10\nmarkup = full\nformat = \"<b>%s</b>\\n%b\"\n"
                                      "icon_position = left\nmin_icon_size = 48\nmax_icon_size = 48\n"
                                      "show_indicators = no\nmouse_left_click = do_action\n"
                                      "[urgency_normal]\ntimeout = 0\n"));
        return {u"dunst"_s, {u"-config"_s, config}};
    }
    static constexpr QPoint NotificationPlace{900, 50};
    /// What the notification server shows at the moment; -1 while there is none.
    [[nodiscard]] int notificationsShown()
    {
        QDBusMessage question =
            QDBusMessage::createMethodCall(u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s,
                                           u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
        question.setAutoStartService(false);
        question.setArguments({u"org.dunstproject.cmd0"_s, u"displayedLength"_s});
        const QVariant answer = bus.connection().call(question).arguments().value(0);
        return answer.canConvert<QDBusVariant>() ? answer.value<QDBusVariant>().variant().toInt() : -1;
    }
    QWidget wallpaper; ///< Below everything that is opened later.
    const TemporaryHome home;
    const BundleCopy bundle;
    SessionBus bus;
    DBusNotifications everybody{bus};
    QStringList opened; ///< What the main application was opened with, each time.
};

} // namespace quarry::test
