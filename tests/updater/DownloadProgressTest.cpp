#include "updater/DownloadProgress.h"

#include "support/QtPrinting.h"
#include "support/SettableClock.h"

#include <gtest/gtest.h>

using namespace quarry;
using quarry::test::SettableClock;
using namespace Qt::Literals::StringLiterals;

namespace {

struct DownloadProgressTest : testing::Test {
    SettableClock clock;
    StringTable texts{QStringLiteral(QUARRY_BUNDLE_DIR "/Resources"), {u"en"_s}, u"Updater"_s};
    DownloadProgress progress{clock, texts};
};

TEST_F(DownloadProgressTest, TellsARemainingTimeAfterThreeSecondsThatNeverGoesUp)
{
    progress.set(0, 100e6, 0);
    progress.setDownloadStartTime();
    EXPECT_EQ(progress.increment(10e6), u"0.0 of 100.0 MB"_s);
    clock.advance(3);
    EXPECT_EQ(progress.increment(10e6), u"10.0 of 100.0 MB"_s) << "not more than 3 seconds";
    clock.advance(1);
    EXPECT_EQ(progress.increment(5e6), u"20.0 of 100.0 MB – 17 s remaining"_s) << "4 s × 80 / 20, and one";
    clock.advance(20);
    EXPECT_EQ(progress.increment(25e6), u"25.0 of 100.0 MB – 17 s remaining"_s) << "72 s would be more";
    clock.advance(1);
    EXPECT_EQ(progress.increment(50e6), u"50.0 of 100.0 MB – 17 s remaining"_s);
    EXPECT_EQ(progress.increment(0), u"100.0 of 100.0 MB – 1 s remaining"_s);
}

TEST_F(DownloadProgressTest, KeepsSilentAboutTimeWithoutASizeOrAStart)
{
    progress.set(0, -1, 0);
    progress.setDownloadStartTime();
    clock.advance(10);
    (void)progress.increment(5e6);
    EXPECT_EQ(progress.increment(1e6), u"5.0 of 0.0 MB"_s);

    progress.set(0, 1000e6, 0);
    clock.advance(10);
    EXPECT_EQ(progress.increment(0), u"0.0 of 1000.0 MB"_s) << "a new download has not begun yet";
    progress.setDownloadStartTime();
    clock.advance(10);
    EXPECT_EQ(progress.increment(1e6), u"0.0 of 1000.0 MB – 9991 s remaining"_s) << "nothing yet counts as 0.1 %";
    progress.clearDownloadStartTime();
    EXPECT_EQ(progress.increment(1e6), u"1.0 of 1000.0 MB"_s) << "cancelled";
}

} // namespace
