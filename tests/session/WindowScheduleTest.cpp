#include "session/WindowSchedule.h"

#include "support/ManualTimers.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;
using namespace std::chrono_literals;

namespace {

class WindowScheduleTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(plan.setPeriodicityMinutes(60), QString());
        ASSERT_EQ(plan.setAutomatic(true), QString());
    }
    void pass(double seconds)
    {
        clock.advance(seconds);
        timers.advance(1s);
    }
    void setLastUpdate(double secondsAgo)
    {
        ASSERT_EQ(plan.setLastUpdate(clock.now().plusSeconds(-secondsAgo)), QString());
    }
    double secondsToNext() { return schedule.nextLaunch()->secondsSince(clock.now()); }

    TemporaryHome home;
    SettableClock clock;
    DiskFileStore files;
    ManualTimers timers;
    Schedule plan{home, files};
    int started = 0;
    bool isRunning = false;
    int told = 0;
    WindowSchedule schedule{{home, clock, files, timers},
                            [this] {
                                started += isRunning ? 0 : 1;
                                return !std::exchange(isRunning, true);
                            },
                            [this] { ++told; }};
};

TEST_F(WindowScheduleTest, WithAutomaticRefreshOffNothingStarts)
{
    ASSERT_EQ(plan.setAutomatic(false), QString());
    schedule.start();
    pass(100000);
    EXPECT_EQ(started, 0);
    EXPECT_EQ(schedule.nextLaunch(), std::nullopt);
    ASSERT_TRUE(QFile::remove(home->scheduleFile()));
    pass(100000);
    EXPECT_EQ(started, 0);
}

TEST_F(WindowScheduleTest, OneIsDueAPeriodAfterTheLastAndAtOnceWithoutOne)
{
    struct Case {
        std::optional<double> secondsAgo;
        bool startsAtOnce;
        double secondsToNext;
    };
    // Of these the file tells one, and the window is opened then. An hour is a period.
    const Case cases[] = {{std::nullopt, true, 3600}, {3601, true, 3600},   {3600, true, 3600},  {3000, false, 600},
                          {0, false, 3600},           {-1800, false, 3600}, {-90000, true, 3600}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.secondsAgo.value_or(-1));
        TemporaryHome own;
        Schedule file(own, files);
        ASSERT_EQ(file.setAutomatic(true) + file.setPeriodicityMinutes(60), QString());
        if (each.secondsAgo) {
            ASSERT_EQ(file.setLastUpdate(clock.now().plusSeconds(-*each.secondsAgo)), QString());
        }
        bool hasStarted = false;
        WindowSchedule opened(
            {own, clock, files, timers}, [&] { return hasStarted = true; }, [] {});
        opened.start();
        EXPECT_EQ(hasStarted, each.startsAtOnce);
        EXPECT_NEAR(opened.nextLaunch()->secondsSince(clock.now()), each.secondsToNext, 1);
    }
}

TEST_F(WindowScheduleTest, ThePeriodCountsFromTheEndOfARefreshHoweverItEnded)
{
    schedule.start();
    ASSERT_EQ(started, 1) << "there was none before";
    pass(5000);
    EXPECT_EQ(started, 1) << "a refresh that lasts longer than a period brings no second one";
    isRunning = false;
    schedule.refreshEnded(); // It failed: the file tells of none.
    EXPECT_NEAR(secondsToNext(), 3600, 1);
    pass(3599);
    EXPECT_EQ(started, 1);
    pass(1);
    EXPECT_EQ(started, 2);
}

TEST_F(WindowScheduleTest, AClockThatWasPutBackDelaysByNoMoreThanAPeriod)
{
    setLastUpdate(0);
    schedule.start();
    clock.set(clock.now().plusSeconds(-400000));
    pass(1);
    EXPECT_NEAR(secondsToNext(), 3600, 2);
}

TEST_F(WindowScheduleTest, ChangesOfTheFileCountFromTheNextSecondOn)
{
    setLastUpdate(600);
    schedule.start();
    const int before = told;
    ASSERT_EQ(plan.setPeriodicityMinutes(20), QString());
    pass(1);
    EXPECT_NEAR(secondsToNext(), 600, 2);
    EXPECT_EQ(told, before + 1);
    setLastUpdate(0); // A refresh from the command line.
    pass(1);
    EXPECT_NEAR(secondsToNext(), 1200, 2);
    ASSERT_EQ(plan.setAutomatic(false), QString());
    pass(1);
    EXPECT_EQ(schedule.nextLaunch(), std::nullopt);
    EXPECT_EQ(started, 0);
}

} // namespace
