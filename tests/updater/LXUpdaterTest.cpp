#include "updater/LXUpdater.h"

#include "support/DesktopDoubles.h"
#include "support/FakePageLoader.h"
#include "support/ManualTimers.h"
#include "support/QtPrinting.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"
#include "support/UpdaterDoubles.h"
#include "text/Data.h"
#include "updater/PreferencesDefaults.h"
#include "updater/RequestCoding.h"

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

UpdateInfos infosOf(const char* version, const char* system = "101500")
{
    return {QString::fromUtf8(version), QString::fromUtf8(system), Url::fromStored(u"https://a.example/p"_s),
            Url::fromStored(u"https://a.example/q.iso"_s)};
}

struct Delegate final : UpdateResultDelegate {
    void updateResulteDidGetResult(int result) override { results.push_back(result); }
    std::vector<int> results;
};

struct LXUpdaterTest : testing::Test {
    LXUpdaterTest()
    {
        product.version = u"1.2.5"_s;
        product.osVersion = 120400;
        product.scriptUrl = Url::fromStored(u"https://updates.example/u"_s);
    }
    std::unique_ptr<LXUpdater> make()
    {
        const auto makeLoader = [this] {
            return std::make_shared<FakeUpdateLoader>([this](const QByteArray& address) {
                requests.push_back(address);
                return reply;
            });
        };
        const auto makeWindow = [this] { return std::make_unique<FakeUpdaterWindow>(window); };
        auto updater = std::make_unique<LXUpdater>(UpdaterParts{product, clock, events, notifications, defaults, alerts,
                                                                texts, makeLoader, makeWindow, nullptr});
        updater->setProductReference(u"QS1"_s);
        updater->setCheckEndedHandler([this](UpdateCheckEnd end) { ends.push_back(end); });
        return updater;
    }
    void answer(const char* text) { reply = FakePageLoader::page(*compressedData(text)); }
    bool waitForEnd(std::size_t count = 1)
    {
        return events.runUntil([this, count] { return ends.size() >= count; });
    }

    ProductInfo product;
    SettableClock clock;
    LocalNotifications notifications;
    FakeUpdaterDefaults defaults;
    FakeAlerts alerts;
    StringTable texts;
    FakeUpdaterWindow::Notes window;
    LoadedPage reply;
    std::vector<QByteArray> requests; ///< Written by the one request that runs, read when it has ended.
    std::vector<UpdateCheckEnd> ends;
    ManualTimers events;
};

TEST_F(LXUpdaterTest, AgentAnnouncesANewVersionToTheOtherPrograms)
{
    answer("1.2.6;101500;https://a.example/p;https://a.example/q.iso");
    const auto updater = make();
    updater->setCanWarnUser(false);
    updater->setLogFlag(true);
    updater->setScriptURL(Url::fromStored(u"https://updates.example/script"_s));
    updater->setScriptURL(Url());
    updater->checkVersionAsynchronous();
    updater->checkVersionAsynchronous();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(requests, std::vector<QByteArray>{"https://updates.example/script?" +
                                                RequestCoding::asciiToHexa(u"120400|1.2.5|QS1|LOG"_s).toLatin1()});
    EXPECT_EQ(ends, std::vector{UpdateCheckEnd::Offered});
    EXPECT_EQ(notifications.names, QStringList{u"NEW_VERSION_AVAILABLE_NOTIFICATION QS1"_s});
    EXPECT_EQ(notifications.last.value(u"ProductDownloadURLKey"_s), u"https://a.example/p"_s);
    EXPECT_EQ(updater->updateInfos(), infosOf("1.2.6"));
    EXPECT_TRUE(window.offers.empty());

    // The notification comes back: the agent shows the offer and gets its answer.
    Delegate agent;
    updater->setResultDelegate(&agent);
    updater->askForDownloadUpdate(u"1.2.6"_s);
    ASSERT_EQ(window.offers.size(), 1U);
    EXPECT_EQ(window.offers.front(), infosOf("1.2.6"));
    EXPECT_TRUE(updater->isShowingWindow());
    window.master->controllerResult(0);
    window.master->controllerResult(1);
    EXPECT_EQ(agent.results, (std::vector{0, 1}));
}

TEST_F(LXUpdaterTest, DecidesByVersionSystemAndWhoAsked)
{
    struct Case {
        const char* name;
        std::optional<UpdateInfos> infos;
        std::size_t offers;
        const char* alert; // null: none
        UpdateCheckEnd end;
        bool canWarn;
        bool manual;
        bool announced;
    };
    const char* const noNews = "Updater_1.0_No new version title";
    const Case cases[] = {
        {"quiet, newer", infosOf("1.2.6"), 0, nullptr, UpdateCheckEnd::Offered, false, false, true},
        {"quiet, same", infosOf("1.2.5"), 0, nullptr, UpdateCheckEnd::NothingNew, false, false, false},
        {"may warn, newer", infosOf("1.2.6"), 1, nullptr, UpdateCheckEnd::Offered, true, false, false},
        {"may warn, same", infosOf("1.2.5"), 0, nullptr, UpdateCheckEnd::NothingNew, true, false, false},
        {"manual, newer", infosOf("1.2.6"), 1, nullptr, UpdateCheckEnd::Offered, false, true, false},
        {"manual, same", infosOf("1.2.5"), 0, noNews, UpdateCheckEnd::NothingNew, false, true, false},
        {"newer system", infosOf("1.2.6", "120401"), 0, "Updater_1.0_New version for recent os title",
         UpdateCheckEnd::NeedsNewerSystem, true, true, false},
        {"nothing known", std::nullopt, 0, nullptr, UpdateCheckEnd::NoInformation, true, false, false},
        {"manual, nothing known", std::nullopt, 0, noNews, UpdateCheckEnd::NoInformation, true, true, false},
        {"manual, no version", infosOf(""), 0, noNews, UpdateCheckEnd::NoInformation, true, true, false},
    };
    for (const Case& c : cases) {
        alerts = FakeAlerts();
        notifications.names.clear();
        window = {};
        const auto updater = make();
        updater->setCanWarnUser(c.canWarn);
        updater->setManualUpdate(c.manual);
        EXPECT_EQ(updater->checkudatesWithVersionInPhp(c.infos), c.end) << c.name;
        EXPECT_EQ(window.offers.size(), c.offers) << c.name;
        EXPECT_EQ(alerts.titles(), c.alert ? QStringList{QString::fromUtf8(c.alert)} : QStringList()) << c.name;
        EXPECT_EQ(alerts.fronts, c.offers > 0 || c.alert == noNews ? 1 : 0) << c.name;
        EXPECT_EQ(notifications.names.size(), c.announced ? 1 : 0) << c.name;
    }
}

TEST_F(LXUpdaterTest, WarnsOfANewerSystemUntilToldNotTo)
{
    const auto updater = make();
    updater->checkudatesWithVersionInPhp(infosOf("1.2.6", "130000"));
    EXPECT_TRUE(updater->isShowingWindow());
    EXPECT_EQ(alerts.shown.front().message, u"Updater_1.0_New version for recent os  message"_s);
    alerts.answer(0);
    EXPECT_TRUE(defaults.warnAgain);
    EXPECT_EQ(alerts.fronts, 0) << "nobody asked";
    updater->checkudatesWithVersionInPhp(infosOf("1.2.6", "130000"));
    alerts.answer(1);
    EXPECT_FALSE(defaults.warnAgain);
    updater->checkudatesWithVersionInPhp(infosOf("1.2.6", "130000"));
    EXPECT_EQ(alerts.shown.size(), 2U);
    EXPECT_FALSE(updater->isShowingWindow());
}

TEST_F(LXUpdaterTest, OffersOnceADayUnlessAsked)
{
    const auto updater = make();
    const auto offersAfter = [&](double seconds) {
        clock.advance(seconds);
        updater->askForDownloadUpdate(u"1.2.6"_s);
        return window.offers.size();
    };
    EXPECT_EQ(offersAfter(0), 1U);
    EXPECT_EQ(offersAfter(86099), 1U);
    EXPECT_EQ(offersAfter(1), 2U);
    EXPECT_EQ(offersAfter(10), 2U);
    updater->resetUpdateTime();
    EXPECT_EQ(offersAfter(10), 3U);
    updater->setManualUpdate(true);
    EXPECT_EQ(offersAfter(10), 4U);
    updater->setManualUpdate(false);
    EXPECT_EQ(offersAfter(-200000), 5U) << "the clock was set back";
}

TEST_F(LXUpdaterTest, EndsQuietlyWithoutAUsableReply)
{
    const auto updater = make();
    updater->setCanWarnUser(true);
    reply = FakePageLoader::failure(u"connection refused"_s);
    updater->checkVersionAsynchronous();
    ASSERT_TRUE(waitForEnd());
    answer("nonsense");
    updater->checkVersionAsynchronousBackground();
    EXPECT_EQ(requests.size(), 1U) << "five seconds later";
    events.advance(std::chrono::seconds(5));
    ASSERT_TRUE(waitForEnd(2));
    EXPECT_EQ(ends, (std::vector{UpdateCheckEnd::NoReply, UpdateCheckEnd::NoInformation}));
    EXPECT_TRUE(alerts.shown.empty() && window.offers.empty() && notifications.names.empty());
}

TEST_F(LXUpdaterTest, AutomaticUpdateStopsLaterChecksAndNeverInstallsAnOldVersion)
{
    const auto updater = make();
    answer("1.2.4;101500;https://a.example/p;https://a.example/q.iso");
    updater->checkVersionAsynchronousAskUser(false);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(ends, std::vector{UpdateCheckEnd::NothingNew});
    updater->checkVersionAsynchronousAskUser(true);
    EXPECT_EQ(requests.size(), 1U) << "no new check starts";
    updater->checkVersionAsynchronous();
    ASSERT_TRUE(waitForEnd(2));
    EXPECT_EQ(requests.size(), 2U);
}

TEST_F(LXUpdaterTest, ChecksOnlyWhereItMay)
{
    const auto nameless = make();
    nameless->setProductReference({});
    nameless->checkVersionAsynchronous();
    EXPECT_TRUE(ends.empty());

    product.scriptUrl = Url::fromStored(u"http://updates.example/u"_s);
    const auto plain = make();
    plain->checkVersionAsynchronous();
    product.updatesComeFromSystem = true;
    const auto packaged = make();
    packaged->setManualUpdate(true);
    packaged->checkVersionAsynchronous();
    product.updatesComeFromSystem = false;
    product.scriptUrl = {};
    const auto without = make();
    without->setScriptURL(Url::fromStored(u"https://updates.example/u"_s));
    without->checkVersionAsynchronous();
    EXPECT_EQ(ends, (std::vector{UpdateCheckEnd::NoReply, UpdateCheckEnd::NoUpdates, UpdateCheckEnd::NoUpdates}));
    EXPECT_TRUE(requests.empty());
    ASSERT_EQ(alerts.shown.size(), 1U) << "only the check that the user asked for is answered";
    EXPECT_EQ(alerts.shown.front().message, u"Updater_1.0_Updates from system message"_s);
}

TEST(PreferencesDefaults, KeepsTheAnswerAmongThePreferences)
{
    const TemporaryHome home;
    ASSERT_TRUE(writeFile(home->preferencesFile(),
                          "<plist version=\"1.0\"><dict><key>other</key><string>kept</string></dict></plist>"));
    DiskFileStore files;
    PreferencesDefaults defaults(home, files);
    EXPECT_TRUE(defaults.warnAgainUserForMoreRecentOS());
    defaults.setWarnAgainUserForMoreRecentOS(false);
    EXPECT_FALSE(PreferencesDefaults(home, files).warnAgainUserForMoreRecentOS());
    EXPECT_TRUE(contentOf(home->preferencesFile()).contains("kept"));
}

} // namespace
