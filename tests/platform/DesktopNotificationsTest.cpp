#include "platform/desktop/DesktopNotifications.h"

#include "platform/desktop/SessionBus.h"
#include "support/EventWait.h"
#include "support/NotificationServer.h"
#include "support/QtPrinting.h"
#include "support/SessionBusDaemon.h"

#include <gtest/gtest.h>

using namespace quarry;
using test::NotificationServer;
using test::waitFor;

namespace {

const QStringList Everything = {QStringLiteral("body"), QStringLiteral("body-markup"), QStringLiteral("actions")};

class DesktopNotificationsTest : public testing::Test {
protected:
    DesktopNotificationsTest()
    {
        centre.setActivationHandler([this](DesktopNotifications::Identifier id) { clicked.append(id); });
    }
    void deliver(const char* text) { centre.deliver({QStringLiteral("QuarrySpotter"), QString::fromUtf8(text)}); }
    [[nodiscard]] bool counts(qsizetype count)
    {
        return waitFor([&] { return centre.delivered().size() == count; });
    }

    test::SessionBusDaemon daemon;
    SessionBus bus;
    DesktopNotifications centre{
        bus, {QStringLiteral("QuarrySpotter"), {}, QStringLiteral("QuarrySpotter"), QStringLiteral("Open")}};
    QList<DesktopNotifications::Identifier> clicked;
};

TEST_F(DesktopNotificationsTest, AreWrittenAsTheServerReadsThem)
{
    using Case = std::tuple<QStringList, QString, QString, QStringList>;
    const QString title = QStringLiteral("QuarrySpotter");
    const QString plain = QStringLiteral("2 new for <b>R&D</b>\n1 new for tea");
    for (const auto& [capabilities, summary, body, actions] :
         {Case{Everything,
               title,
               QStringLiteral("2 new for &lt;b&gt;R&amp;D&lt;/b&gt;\n1 new for tea"),
               {QStringLiteral("default"), QStringLiteral("Open")}},
          Case{{QStringLiteral("body")}, title, plain, {}},
          Case{{}, title + QStringLiteral(": 2 new for <b>R&D</b> 1 new for tea"), {}, {}}}) {
        NotificationServer server(capabilities);
        deliver("\n2 new for <b>R&D</b>\n1 new\a for tea");
        ASSERT_TRUE(waitFor([&] { return server.shown.size() == 1; }));
        EXPECT_EQ(server.shown[0].summary, summary);
        EXPECT_EQ(server.shown[0].body, body);
        EXPECT_EQ(server.shown[0].actions, actions);
        EXPECT_EQ(server.shown[0].hints.value(QStringLiteral("desktop-entry")).toString(), title);
        ASSERT_TRUE(counts(1));
    }
    EXPECT_TRUE(counts(0)) << "the last server is gone";
}

TEST_F(DesktopNotificationsTest, CountAndRemoveOnlyTheProgramsOwn)
{
    NotificationServer server(Everything, 7);
    deliver("a");
    deliver("b");
    deliver("c");
    ASSERT_TRUE(counts(3));
    server.close(99);
    server.click(99);
    server.click(8, QStringLiteral("settings"));
    server.close(7);
    ASSERT_TRUE(counts(2));
    centre.remove(99);
    server.click(8);
    ASSERT_TRUE(waitFor([&] { return !clicked.isEmpty(); }));
    EXPECT_EQ(clicked, QList<quint32>({8}));
    EXPECT_EQ(centre.delivered(), QList<quint32>({9}));
    deliver("on its way");
    centre.removeAllDelivered();
    EXPECT_TRUE(centre.delivered().isEmpty());
    ASSERT_TRUE(waitFor([&] { return server.closed.size() == 3; }));
    EXPECT_EQ(server.closed, QList<uint>({8, 9, 10}));
    EXPECT_TRUE(centre.delivered().isEmpty());

    server.closesAtOnce = true;
    deliver("closed before its number is known");
    ASSERT_TRUE(waitFor([&] { return server.shown.size() == 5; }));
    server.closesAtOnce = false;
    deliver("shown");
    EXPECT_TRUE(waitFor([&] { return centre.delivered() == QList<quint32>({12}); }));
}

TEST_F(DesktopNotificationsTest, ForgetAServerThatWent)
{
    deliver("nobody is there");
    auto server = std::make_unique<NotificationServer>(Everything);
    QCoreApplication::processEvents();
    deliver("a");
    ASSERT_TRUE(counts(1));
    server.reset();
    ASSERT_TRUE(counts(0));
    deliver("nobody");
    NotificationServer second({QStringLiteral("body")});
    NotificationServer stranger(Everything, 100);
    centre.remove(1);
    deliver("x < y");
    ASSERT_TRUE(counts(1));
    stranger.close(1);
    stranger.click(1);
    EXPECT_EQ(second.shown.last().body, QStringLiteral("x < y")) << "it was asked anew";
    EXPECT_TRUE(second.closed.isEmpty());

    daemon.stop();
    ASSERT_TRUE(counts(0));
    deliver("no bus");
    daemon.start();
    ASSERT_TRUE(waitFor([&] { return bus.isConnected(); }));
    NotificationServer third(Everything, 50);
    deliver("b");
    ASSERT_TRUE(counts(1));
    server.reset();
    third.click(50);
    EXPECT_TRUE(waitFor([&] { return clicked == QList<quint32>({50}); }));
}

} // namespace
