#include "agent/LXSoftwareUpdates.h"

#include "agent/AgentRig.h"
#include "support/FakePageLoader.h"
#include "support/UpdaterDoubles.h"

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

using AgentUpdates = AgentRig;

TEST_F(AgentUpdates, ACheckOfItsOwnBecomesAnOfferThatTheMainApplicationTakesUp)
{
    FakeUpdaterWindow::Notes window;
    FakeUpdaterDefaults defaults;
    FakeAlerts updaterAlerts;
    ProductInfo product;
    product.version = u"1.2.5"_s;
    product.osVersion = osVersion;
    product.scriptUrl = Url::fromStored(u"https://updates.example/u"_s);
    LXSoftwareUpdates real([&] {
        return std::make_unique<LXUpdater>(UpdaterParts{
            product, clock, timers, distributed, defaults, updaterAlerts, texts,
            [] {
                return std::make_shared<FakeUpdateLoader>([](const QByteArray&) {
                    return FakePageLoader::page("1.3.0;101500;https://a.example/p;https://a.example/q.iso");
                });
            },
            [&window] { return std::make_unique<FakeUpdaterWindow>(window); }, nullptr});
    });
    realUpdates = &real;
    menu();
    pass(20);
    ASSERT_TRUE(timers.runUntil([&] { return !window.offers.empty(); }));
    EXPECT_EQ(window.offers.front().curentVersion, u"1.3.0"_s);
    EXPECT_FALSE(alerts.last);
    EXPECT_TRUE(real.isShowingWindow()) << "no restart meanwhile";
    EXPECT_FALSE(QFile::exists(home->updaterFlagFile()));
    notes.clear();
    window.master->controllerResult(1);
    EXPECT_TRUE(QFile::exists(home->updaterFlagFile()));
    EXPECT_EQ(takeNotes(), QStringList{u"open QuarrySpotter.app"_s});
}

} // namespace
