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

/// A property list with these entries.
inline QByteArray plistOf(const PlistValue::Dictionary& entries)
{
    return writeXmlPropertyList(entries);
}

/// The texts of the agent, short enough to be read in a test.
inline StringTable shortTexts(const QString& folder)
{
    const auto path = folder + QStringLiteral("/English.lproj");
    EXPECT_TRUE(QDir().mkpath(path));
    EXPECT_TRUE(
        writeFile(path + QStringLiteral("/Localizable.strings"),
                  plistOf({{QStringLiteral("100_Update menu disabled"), QStringLiteral("disabled")},
                           {QStringLiteral("100_Updating menu string"), QStringLiteral("updating")},
                           {QStringLiteral("100_Update menu string format"), QStringLiteral("%@ %@")},
                           {QStringLiteral("100_Minutes"), QStringLiteral("min")},
                           {QStringLiteral("100_Hours"), QStringLiteral("h")},
                           {QStringLiteral("100_Not determinated"), QStringLiteral("unknown")},
                           {QStringLiteral("113_New Queries Results"), QStringLiteral("New")},
                           {QStringLiteral("113_Template string for queries result"), QStringLiteral("\n%ld for %@")},
                           {QStringLiteral("113_Template string for queries result Singular form"),
                            QStringLiteral("\n1 of %2$@")}})));
    return {folder, {QStringLiteral("en")}};
}

/// The main application, the agent and its helpers as folders, without programs that could run.
class BundleFolders final {
public:
    BundleFolders()
    {
        EXPECT_TRUE(QDir().mkpath(agent() + QStringLiteral("/Contents/Resources/English.lproj")));
        EXPECT_TRUE(QDir().mkpath(agent() + QStringLiteral("/Contents/bin")));
        EXPECT_TRUE(writeFile(agent() + QStringLiteral("/Contents/Resources/appicon.icns"), "icon"));
        EXPECT_TRUE(writeFile(agent() + QStringLiteral("/Contents/Info.plist"),
                              plistOf({{QStringLiteral("CFBundleName"), QStringLiteral("QuarrySpotterAgent")},
                                       {QStringLiteral("CFBundleVersion"), QStringLiteral("1.2.5")}})));
        EXPECT_TRUE(writeFile(helper(), "helper"));
        EXPECT_TRUE(QFile::setPermissions(helper(), QFile::ReadOwner | QFile::ExeOwner));
    }
    [[nodiscard]] QString agent() const
    {
        return _folder.path() + QStringLiteral("/QuarrySpotter.app/Contents/Agents/QuarrySpotterAgent.app");
    }
    [[nodiscard]] QString helper() const { return agent() + QStringLiteral("/Contents/bin/RelaunchApp"); }

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
        processes.start(QStringLiteral("QuarrySpotterAge"), processes.ownProcessId());
        schedule({});
    }
    /// Automatic refresh every 10 minutes, the last one 5 minutes ago; entries given here take their place.
    void schedule(const PlistValue::Dictionary& changes)
    {
        PlistValue::Dictionary entries{
            {QStringLiteral("pref_automatic_ON"), true},
            {QStringLiteral("pref_automatic_periodicity"), 10},
            {QStringLiteral("pref_lastUpdate"), clock.now().secondsSinceReference() - 300.0}};
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
                [this] { notes.append(QStringLiteral("terminate")); },
                [this] { notes.append(QStringLiteral("without main application")); }};
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
    [[nodiscard]] bool hasLeft() const { return notes.contains(QStringLiteral("terminate")); }
    void startMainApp() { processes.start(QStringLiteral("QuarrySpotter"), 100); }
    void endMainApp() { processes.end(100); }
    void startUpdater() { processes.start(QStringLiteral("QuarrySpotterUpd"), 200); }
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
