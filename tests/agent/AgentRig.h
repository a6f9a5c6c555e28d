#pragma once

#include "agent/AgentDoubles.h"
#include "agent/QSMenu.h"
#include "platform/SystemLog.h"
#include "support/FailingFileStore.h"
#include "support/ManualTimers.h"
#include "support/QtPrinting.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>

namespace quarry::test {

using namespace Qt::Literals::StringLiterals;

/// A property list with these entries.
inline QByteArray plistOf(const PlistValue::Dictionary& entries)
{
    return writeXmlPropertyList(entries);
}

/// The texts of the agent, short enough to be read in a test.
inline StringTable shortTexts(const QString& folder)
{
    const auto path = folder + u"/English.lproj"_s;
    EXPECT_TRUE(QDir().mkpath(path));
    EXPECT_TRUE(writeFile(path + u"/Localizable.strings"_s,
                          plistOf({{u"100_Update menu disabled"_s, u"disabled"_s},
                                   {u"100_Updating menu string"_s, u"updating"_s},
                                   {u"100_Update menu string format"_s, u"%@ %@"_s},
                                   {u"100_Minutes"_s, u"min"_s},
                                   {u"100_Hours"_s, u"h"_s},
                                   {u"100_Not determinated"_s, u"unknown"_s},
                                   {u"113_New Queries Results"_s, u"New"_s},
                                   {u"113_Template string for queries result"_s, u"\n%ld for %@"_s},
                                   {u"113_Template string for queries result Singular form"_s, u"\n1 of %2$@"_s}})));
    return {folder, {u"en"_s}};
}

/// The main application, the agent and its helpers as folders, without programs that could run.
class BundleFolders final {
public:
    BundleFolders()
    {
        EXPECT_TRUE(QDir().mkpath(agent() + u"/Contents/Resources/English.lproj"_s));
        EXPECT_TRUE(QDir().mkpath(agent() + u"/Contents/bin"_s));
        EXPECT_TRUE(writeFile(agent() + u"/Contents/Resources/appicon.icns"_s, "icon"));
        EXPECT_TRUE(
            writeFile(agent() + u"/Contents/Info.plist"_s,
                      plistOf({{u"CFBundleName"_s, u"QuarrySpotterAgent"_s}, {u"CFBundleVersion"_s, u"1.2.5"_s}})));
        EXPECT_TRUE(writeFile(helper(), "helper"));
        EXPECT_TRUE(QFile::setPermissions(helper(), QFile::ReadOwner | QFile::ExeOwner));
    }
    [[nodiscard]] QString agent() const
    {
        return _folder.path() + u"/QuarrySpotter.app/Contents/Agents/QuarrySpotterAgent.app"_s;
    }
    [[nodiscard]] QString helper() const { return agent() + u"/Contents/bin/RelaunchApp"_s; }

private:
    QTemporaryDir _folder;
};

/// An agent with everything it needs, its process already in the table; nothing happens until a test says so.
class AgentRig : public ::testing::Test {
public:
    ~AgentRig() override { setSystemLogSink({}); }

protected:
    using Tag = StatusItem::Tag;

    AgentRig()
    {
        setSystemLogSink([this](const QString& line) { log.append(line); });
        processes.start(u"QuarrySpotterAge"_s, processes.ownProcessId());
        schedule({});
    }
    /// Automatic refresh every 10 minutes, the last one 5 minutes ago; entries given here take their place.
    void schedule(const PlistValue::Dictionary& changes)
    {
        PlistValue::Dictionary entries{{u"pref_automatic_ON"_s, true},
                                       {u"pref_automatic_periodicity"_s, 10},
                                       {u"pref_lastUpdate"_s, clock.now().secondsSinceReference() - 300.0}};
        entries.insert(changes);
        ASSERT_TRUE(writeFile(home->scheduleFile(), plistOf(entries)));
    }
    AgentParts parts()
    {
        return {AgentBundle::at(bundles.agent()),
                home,
                osVersion,
                clock,
                files,
                timers,
                processes,
                workspace,
                distributed,
                notifications,
                loginItems,
                statusItem,
                alerts,
                results,
                realUpdates ? *realUpdates : updates,
                productLog,
                texts,
                texts,
                [this] { notes.append(u"terminate"_s); },
                [this] { notes.append(u"without main application"_s); }};
    }
    /// Starts the agent.
    QSMenu& menu()
    {
        if (!_menu) {
            _menu.emplace(parts());
            _menu->awakeFromNib();
            timers.runPosted();
        }
        return *_menu;
    }
    /// Lets time pass, a second at a time.
    void pass(int seconds)
    {
        for (int second = 0; second < seconds; ++second) {
            clock.advance(1.0);
            timers.advance(std::chrono::seconds(1));
            timers.runPosted();
        }
    }
    QStringList takeNotes() { return std::exchange(notes, {}); }
    [[nodiscard]] bool hasLeft() const { return notes.contains(u"terminate"_s); }
    void startMainApp() { processes.start(u"QuarrySpotter"_s, 100); }
    void endMainApp() { processes.end(100); }
    void startUpdater() { processes.start(u"QuarrySpotterUpd"_s, 200); }
    void endUpdater() { processes.end(200); }

    int osVersion = 101500;
    QStringList notes;
    QStringList log;
    TemporaryHome home;
    BundleFolders bundles;
    SettableClock clock;
    FailingFileStore files;
    ManualTimers timers;
    FakeProcesses processes{notes};
    FakeWorkspace workspace{notes};
    LocalNotifications distributed;
    FakeUserNotifications notifications;
    FakeLoginItems loginItems;
    FakeStatusItem statusItem{notes};
    KeptAlerts alerts;
    FakeResults results{timers};
    FakeSoftwareUpdates updates;
    SoftwareUpdates* realUpdates = nullptr; ///< In place of them, from the start.
    NotingLogger productLog;
    StringTable texts = shortTexts(home.path());

private:
    std::optional<QSMenu> _menu;
};

} // namespace quarry::test
