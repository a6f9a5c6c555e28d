// Preferences, schedule and services: what commands say is what the files hold, and foreign entries stay.

#include "support/QuarryProcess.h"
#include "support/TemporaryHome.h"

#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

QByteArray plist(const QByteArray& entries)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>" + entries + "</dict></plist>";
}

QString serviceLine(const Ran& ran, const QString& name)
{
    for (const QString& line : ran.out.split(u'\n')) {
        if (line.startsWith(name))
            return line.simplified();
    }
    return {};
}

TEST(QuarrySettings, PreferencesAndScheduleKeepForeignEntries)
{
    const TemporaryHome home;
    ASSERT_TRUE(writeFile(home->preferencesFile(), plist("<key>pref_other</key><string>kept</string>")));
    EXPECT_EQ(
        runQuarry(home.path(), {u"prefs"_s, u"--results-per-service"_s, u"70"_s, u"--new-links"_s, u"9"_s}).status, 0);
    const QJsonObject prefs = runQuarry(home.path(), {u"prefs"_s, u"--json"_s}).json();
    EXPECT_EQ(prefs[u"resultsPerService"_s].toInt(), 70);
    EXPECT_EQ(prefs[u"newLinksPerUpdate"_s].toInt(), 9);
    EXPECT_TRUE(contentOf(home->preferencesFile()).contains("pref_other"));

    ASSERT_TRUE(writeFile(home->scheduleFile(), plist("<key>pref_other</key><string>kept</string>")));
    EXPECT_EQ(runQuarry(home.path(), {u"schedule"_s, u"on"_s, u"every"_s, u"45"_s}).status, 0);
    const QJsonObject schedule = runQuarry(home.path(), {u"schedule"_s, u"--json"_s}).json();
    EXPECT_TRUE(schedule[u"automatic"_s].toBool());
    EXPECT_EQ(schedule[u"everyMinutes"_s].toInt(), 45);
    EXPECT_TRUE(schedule[u"lastUpdate"_s].isNull());
    EXPECT_TRUE(contentOf(home->scheduleFile()).contains("pref_other"));
}

TEST(QuarrySettings, ServicesAreSwitchedPointedElsewhereAndReset)
{
    const TemporaryHome home;
    const Ran publicOnes = runQuarry(home.path(), {u"services"_s});
    EXPECT_EQ(runQuarry(home.path(), {u"services"_s, u"--at"_s, u"http://127.0.0.1:8642"_s}).status, 0);
    EXPECT_EQ(runQuarry(home.path(), {u"services"_s, u"google"_s, u"--at"_s, u"https://search.example"_s}).status, 0);
    const Ran changed = runQuarry(home.path(), {u"services"_s, u"Bing"_s, u"Yahoo"_s, u"--off"_s});
    EXPECT_EQ(serviceLine(changed, u"Google"_s), u"Google on https://search.example"_s);
    EXPECT_EQ(serviceLine(changed, u"Bing"_s), u"Bing off http://127.0.0.1:8642"_s);
    EXPECT_EQ(serviceLine(changed, u"Ixquick"_s), u"Ixquick on http://127.0.0.1:8642"_s);
    EXPECT_EQ(serviceLine(runQuarry(home.path(), {u"services"_s, u"Bing"_s, u"--on"_s}), u"Bing"_s),
              u"Bing on http://127.0.0.1:8642"_s);
    EXPECT_EQ(runQuarry(home.path(), {u"services"_s, u"--reset"_s}).out, publicOnes.out);
}

TEST(QuarrySettings, AServicesFileThatMakesNoSenseIsNamedAndNotBuiltUpon)
{
    const TemporaryHome home;
    const QByteArray faulty = plist("<key>Bing</key><dict><key>port</key><integer>99999</integer></dict>");
    ASSERT_TRUE(writeFile(home->searchServicesFile(), faulty));
    const Ran shown = runQuarry(home.path(), {u"services"_s});
    EXPECT_TRUE(shown.err.contains(u"SearchServices.plist: \"Bing\": \"port\""_s)) << shown.err.toStdString();
    EXPECT_EQ(serviceLine(shown, u"Bing"_s), u"Bing on http://www.bing.com"_s);
    EXPECT_EQ(runQuarry(home.path(), {u"services"_s, u"Google"_s, u"--off"_s}).status, 1);
    EXPECT_EQ(contentOf(home->searchServicesFile()), faulty);
    EXPECT_TRUE(runQuarry(home.path(), {u"services"_s, u"Bing"_s, u"--reset"_s}).err.isEmpty());
}

} // namespace
} // namespace quarry::test
