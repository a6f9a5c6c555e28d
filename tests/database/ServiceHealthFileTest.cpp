#include "database/ServiceHealthFile.h"

#include "support/FailingFileStore.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;
using enum SearchService;

namespace {

class HealthFile : public ::testing::Test {
protected:
    static ServiceHealthFile::Run run(double seconds, SearchService service, const QString& error = {})
    {
        ServiceHealth health;
        health.cachedPages = 2;
        health.statuses = {{200, 5}, {503, 1}};
        health.bytes = qint64(5) << 32;
        health.seconds = 1.25;
        health.results = 31;
        health.judgedAs(ServiceVerdict::Results) = {7, {}};
        health.judgedAs(ServiceVerdict::Unreachable) = {1, error};
        return {Date(seconds), true, {{service, health}}, {{service, QStringLiteral("http://h")}}};
    }

    TemporaryHome home;
    FailingFileStore files;
    ServiceHealthFile file{home, files};
};

TEST_F(HealthFile, KeepsTheLatestRunsAsTheyWere)
{
    const qsizetype runs = ServiceHealthFile::MostRuns + 3;
    for (qsizetype i = 0; i < runs; ++i)
        ASSERT_EQ(file.add(run(double(i), i % 2 == 0 ? Google : Bing, QStringLiteral("HTTP status 503"))), QString());
    ASSERT_EQ(file.add({Date(99.0), false, {}, {}}), QString()) << "nothing was asked";
    const QList<ServiceHealthFile::Run> read = file.read();
    ASSERT_EQ(read.size(), ServiceHealthFile::MostRuns);
    EXPECT_EQ(read.first().ended, Date(3.0));
    EXPECT_EQ(read.last().ended, Date(22.0));
    EXPECT_TRUE(read.last().isStopped);
    EXPECT_EQ(read.last().services, run(22.0, Google, QStringLiteral("HTTP status 503")).services);
    EXPECT_EQ(ServiceHealthFile::latestOf(read, Bing, QStringLiteral("http://h"))->ended, Date(21.0));
    EXPECT_FALSE(ServiceHealthFile::latestOf(read, Bing, QStringLiteral("http://other")))
        << "what was there says nothing about another place";
}

TEST_F(HealthFile, TextsOfServersAreCutAndMadeFitForTheFile)
{
    ASSERT_EQ(file.add(run(1.0, Google, QStringLiteral("a\x01z") + QString(1000, u'x'))), QString());
    const QString error = file.read().value(0).services.value(Google).judgedAs(ServiceVerdict::Unreachable).error;
    EXPECT_TRUE(error.startsWith(QStringLiteral("a zxxx"))) << qPrintable(error);
    EXPECT_EQ(error.size(), 200);
}

TEST_F(HealthFile, EntriesOfOthersStayAndNonsenseIsPassedOver)
{
    ASSERT_TRUE(writeFile(home->serviceHealthFile(), R"(<plist version="1.0"><dict><key>theirs</key><real>1.5</real>
        <key>runs</key><array><string>no run</string>
        <dict><key>ended</key><date>2026-11-21T04:10:00Z</date><key>more</key><true/><key>services</key><dict>
          <key>Altavista</key><dict><key>pages</key><integer>1</integer></dict>
          <key>Bing</key><string>what?</string>
          <key>Google</key><dict><key>results</key><integer>-5</integer><key>statuses</key><array/><key>judged</key>
            <dict><key>slow</key><true/><key>blocked</key><dict><key>pages</key><integer>3</integer></dict></dict></dict>
        </dict></dict></array></dict></plist>)"));
    QString fault;
    const QList<ServiceHealthFile::Run> read = file.read(&fault);
    EXPECT_EQ(fault, QString());
    ASSERT_EQ(read.size(), 1);
    EXPECT_EQ(read[0].services.keys(), QList({Google}));
    EXPECT_EQ(read[0].services.value(Google).results, 0);
    EXPECT_EQ(read[0].services.value(Google).verdict(), ServiceVerdict::Blocked);

    ASSERT_EQ(file.add(run(1.0, Google)), QString());
    const PlistValue content = readPropertyList(contentOf(home->serviceHealthFile())).value_or(PlistValue());
    const PlistValue::List runs = content[QStringLiteral("runs")].list().value_or(PlistValue::List());
    EXPECT_EQ(content[QStringLiteral("theirs")], PlistValue(1.5));
    ASSERT_EQ(runs.size(), 3);
    EXPECT_EQ(runs[1][QStringLiteral("more")], PlistValue(true));
    EXPECT_FALSE(runs[1][QStringLiteral("services")][QStringLiteral("Altavista")].isNull());

    ASSERT_TRUE(writeFile(home->serviceHealthFile(), "no list"));
    EXPECT_TRUE(file.read(&fault).isEmpty());
    EXPECT_TRUE(fault.contains(QStringLiteral("ServiceHealth.plist"))) << qPrintable(fault);
}

} // namespace
