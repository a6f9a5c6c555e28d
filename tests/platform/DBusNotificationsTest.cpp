#include "platform/desktop/DBusNotifications.h"

#include "platform/desktop/SessionBus.h"
#include "support/EventWait.h"
#include "support/SessionBusDaemon.h"

#include <QDBusMessage>
#include <QProcess>

#include <gtest/gtest.h>

using namespace quarry;
using test::waitFor;

namespace {

const QString Quit = QStringLiteral("QUIT_EVERYBODY_NOTIFICATION QS1");
const QString News = QStringLiteral("NEW_VERSION_AVAILABLE_NOTIFICATION QS1");

/// Counts one name's notifications, with what came along.
struct Heard {
    explicit Heard(DBusNotifications& centre, const QString& name)
    {
        centre.addObserver(name, [this](const DistributedNotifications::UserInfo& info) { infos.append(info); });
    }
    QList<DistributedNotifications::UserInfo> infos;
};

TEST(DBusNotifications, ReachEveryObserverOfTheNameInEveryProcess)
{
    test::SessionBusDaemon daemon;
    ASSERT_TRUE(daemon.isRunning());
    SessionBus bus;
    SessionBus otherBus;
    DBusNotifications poster(bus);
    DBusNotifications other(otherBus);
    Heard own(poster, Quit);
    Heard first(other, Quit);
    Heard second(other, Quit);
    Heard news(other, News);
    poster.post(News, {{QStringLiteral("ProductDownloadURLKey"), QStringLiteral("http://127.0.0.1/ü?a=\"b\"")}});
    poster.post(Quit);
    ASSERT_TRUE(waitFor([&] { return own.infos.size() + first.infos.size() + second.infos.size() == 3; }));
    ASSERT_EQ(news.infos.size(), 1);
    EXPECT_EQ(news.infos[0].value(QStringLiteral("ProductDownloadURLKey")),
              QStringLiteral("http://127.0.0.1/ü?a=\"b\""));
    EXPECT_TRUE(own.infos[0].isEmpty() && first.infos[0].isEmpty() && second.infos[0].isEmpty());
}

TEST(DBusNotifications, AreDeliveredWithoutThePostersEventLoop)
{
    test::SessionBusDaemon daemon;
    QProcess monitor;
    monitor.start(QStringLiteral("dbus-monitor"), {QStringLiteral("--session"), QStringLiteral("--profile"),
                                                   QStringLiteral("interface='com.zep.QuarrySpotter.Notifications'")});
    ASSERT_TRUE(monitor.waitForReadyRead(60000));
    {
        SessionBus bus;
        DBusNotifications(bus).post(Quit);
    }
    QByteArray said;
    while (!said.contains("Posted") && monitor.waitForReadyRead(60000))
        said += monitor.readAll();
    EXPECT_TRUE(said.contains("Posted")) << said.toStdString();
    monitor.kill();
    monitor.waitForFinished(60000);
}

TEST(DBusNotifications, OutliveTheBusAndForgedSignals)
{
    auto daemon = std::make_unique<test::SessionBusDaemon>();
    SessionBus bus;
    DBusNotifications centre(bus);
    Heard heard(centre, Quit);
    QDBusMessage forged =
        QDBusMessage::createSignal(QStringLiteral("/com/zep/QuarrySpotter/Notifications"),
                                   QStringLiteral("com.zep.QuarrySpotter.Notifications"), QStringLiteral("Posted"));
    forged.setArguments({Quit});
    bus.connection().send(forged);
    daemon->stop();
    ASSERT_TRUE(waitFor([&] { return !bus.isConnected(); }));
    centre.post(Quit);
    EXPECT_TRUE(heard.infos.isEmpty());

    daemon->start();
    ASSERT_TRUE(waitFor([&] { return bus.isConnected(); }));
    centre.post(Quit);
    ASSERT_TRUE(waitFor([&] { return !heard.infos.isEmpty(); }));
    EXPECT_EQ(heard.infos.size(), 1);
}

TEST(DBusNotifications, NeedNoBus)
{
    SessionBus bus;
    EXPECT_FALSE(bus.isConnected());
    DBusNotifications centre(bus);
    Heard heard(centre, Quit);
    centre.post(Quit);
    QCoreApplication::processEvents();
    EXPECT_TRUE(heard.infos.isEmpty());
}

} // namespace
