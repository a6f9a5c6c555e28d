#include "database/Preferences.h"
#include "database/Schedule.h"
#include "support/FailingFileStore.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;

namespace {

class Settings : public ::testing::Test {
protected:
    PlistValue contentOfSchedule() const
    {
        return readPropertyList(contentOf(home->scheduleFile())).value_or(PlistValue());
    }

    TemporaryHome home;
    FailingFileStore files;
    Schedule schedule{home, files};
    Preferences preferences{home, files};
    const Date now{800000000.25};
};

TEST_F(Settings, TheScheduleIsMadeByTheFirstThatNeedsIt)
{
    EXPECT_EQ(preferences.read().resultsPerEngine, 40);
    EXPECT_EQ(preferences.read().numberOfNewLinks, 0);
    EXPECT_FALSE(schedule.read(now).exists);
    ASSERT_EQ(schedule.ensureExists(), QString());
    const Schedule::Settings made = schedule.read(now);
    EXPECT_TRUE(made.exists);
    EXPECT_FALSE(made.automatic);
    EXPECT_EQ(made.periodicityMinutes, 30);
    EXPECT_TRUE(made.checkForUpdates);
    EXPECT_FALSE(made.lastUpdate);
    EXPECT_EQ(contentOfSchedule()[QStringLiteral("pref_automatic_ON")], PlistValue(false));
    EXPECT_EQ(contentOfSchedule()[QStringLiteral("pref_automatic_periodicity")], PlistValue(30));
}

TEST_F(Settings, AChangeKeepsWhatItDoesNotKnow)
{
    ASSERT_TRUE(writeFile(home->scheduleFile(), R"(<plist version="1.0"><dict><key>theirs</key><array><real>1.5</real>
        </array><key>pref_automatic_periodicity</key><integer>0</integer></dict></plist>)"));
    EXPECT_EQ(schedule.read(now).periodicityMinutes, 30) << "0 stands for half an hour";
    ASSERT_EQ(schedule.setLastUpdate(now), QString());
    ASSERT_EQ(schedule.setAutomatic(true), QString());
    EXPECT_EQ(schedule.read(now).lastUpdate, now);
    EXPECT_TRUE(schedule.read(now).automatic);
    EXPECT_EQ(contentOfSchedule()[QStringLiteral("theirs")].list()->first(), PlistValue(1.5));
    EXPECT_EQ(contentOfSchedule()[QStringLiteral("pref_lastUpdate")], PlistValue(now.secondsSinceReference()));
    const int written = files.replacements;
    ASSERT_EQ(schedule.setAutomatic(true), QString());
    EXPECT_EQ(files.replacements, written) << "nothing changed";

    EXPECT_FALSE(schedule.read(now.plusSeconds(-86401)).lastUpdate) << "more than a day ahead is no date";
    EXPECT_TRUE(schedule.read(now.plusSeconds(-86399)).lastUpdate);
}

TEST_F(Settings, ABrokenFileIsNamedServedByDefaultsAndCopiedAside)
{
    for (const QByteArray& broken : {QByteArray("nonsense"), QByteArray("<plist><array/></plist>"), QByteArray()}) {
        ASSERT_TRUE(writeFile(home->scheduleFile(), broken));
        QString fault;
        EXPECT_EQ(schedule.read(now, &fault).periodicityMinutes, 30);
        EXPECT_TRUE(fault.startsWith(home->scheduleFile() + QStringLiteral(" makes no sense: ")))
            << fault.toStdString();
        EXPECT_EQ(contentOf(home->scheduleFile()), broken);
        ASSERT_EQ(schedule.setAutomatic(true), QString());
        EXPECT_TRUE(schedule.read(now, &fault).automatic);
        EXPECT_EQ(fault, QString());
    }
    EXPECT_EQ(QDir(home->supportFolder()).entryList({QStringLiteral("Schedule.damaged-*.plist")}).size(), 3);
    files.failReads = true;
    EXPECT_NE(schedule.setAutomatic(false), QString()) << "what cannot be read is not replaced";
    files.failReads = false;
    EXPECT_TRUE(schedule.read(now).automatic);
}

} // namespace
