// Preferences, schedule and services: what commands say is what the files hold, and foreign entries stay.

#include "QuarryRig.h"

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

using QuarrySettings = QuarryTest;

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

TEST_F(QuarrySettings, PreferencesAndScheduleKeepForeignEntries)
{
    ASSERT_TRUE(writeFile(home->preferencesFile(), plist("<key>pref_other</key><string>kept</string>")));
    EXPECT_EQ(run("prefs --results-per-service 70 --new-links 9").status, 0);
    const QJsonObject prefs = run("prefs --json").json();
    EXPECT_EQ(prefs[u"resultsPerService"_s].toInt(), 70);
    EXPECT_EQ(prefs[u"newLinksPerUpdate"_s].toInt(), 9);
    EXPECT_TRUE(contentOf(home->preferencesFile()).contains("pref_other"));

    ASSERT_TRUE(writeFile(home->scheduleFile(), plist("<key>pref_other</key><string>kept</string>")));
    EXPECT_EQ(run("schedule on every 45").status, 0);
    const QJsonObject schedule = run("schedule --json").json();
    EXPECT_TRUE(schedule[u"automatic"_s].toBool());
    EXPECT_EQ(schedule[u"everyMinutes"_s].toInt(), 45);
    EXPECT_TRUE(schedule[u"lastUpdate"_s].isNull());
    EXPECT_TRUE(contentOf(home->scheduleFile()).contains("pref_other"));
}

TEST_F(QuarrySettings, ServicesAreSwitchedPointedElsewhereAndReset)
{
    const Ran publicOnes = run("services");
    EXPECT_EQ(run("services --at http://127.0.0.1:8642").status, 0);
    EXPECT_EQ(run("services google --at https://search.example").status, 0);
    const Ran changed = run("services Bing Yahoo --off");
    EXPECT_EQ(serviceLine(changed, u"Google"_s), u"Google on https://search.example"_s);
    EXPECT_EQ(serviceLine(changed, u"Bing"_s), u"Bing off http://127.0.0.1:8642"_s);
    EXPECT_EQ(serviceLine(changed, u"Ixquick"_s), u"Ixquick on http://127.0.0.1:8642"_s);
    EXPECT_EQ(serviceLine(run("services Bing --on"), u"Bing"_s), u"Bing on http://127.0.0.1:8642"_s);
    EXPECT_EQ(run("services --reset").out, publicOnes.out);
}

TEST_F(QuarrySettings, AServicesFileThatMakesNoSenseIsNamedAndNotBuiltUpon)
{
    const QByteArray faulty = plist("<key>Bing</key><dict><key>port</key><integer>99999</integer></dict>");
    ASSERT_TRUE(writeFile(home->searchServicesFile(), faulty));
    const Ran shown = run("services");
    EXPECT_TRUE(shown.err.contains(u"SearchServices.plist: \"Bing\": \"port\""_s)) << shown.err.toStdString();
    EXPECT_EQ(serviceLine(shown, u"Bing"_s), u"Bing on http://www.bing.com"_s);
    EXPECT_EQ(run("services Google --off").status, 1);
    EXPECT_EQ(contentOf(home->searchServicesFile()), faulty);
    EXPECT_TRUE(run("services Bing --reset").err.isEmpty());
}

} // namespace
} // namespace quarry::test
