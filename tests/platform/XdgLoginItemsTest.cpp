#include "platform/XdgLoginItems.h"

#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace quarry;
using test::contentOf;
using test::writeFile;

namespace {

/// An autostart folder that is not there yet, and a bundle under a path that every layer of the format has to escape.
class XdgLoginItemsTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir().mkpath(bundle + QStringLiteral("/Contents/bin")));
        ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/true"), bundle + QStringLiteral("/Contents/bin/Agent")));
        ASSERT_TRUE(writeFile(bundle + QStringLiteral("/Contents/Info.plist"),
                              "<plist><dict><key>CFBundleExecutable</key><string>Agent</string>"
                              "<key>CFBundleIdentifier</key><string>com.zep.Agent</string></dict></plist>"));
    }
    [[nodiscard]] QString entry(const char* name) const { return autostart + u'/' + QLatin1String(name); }

    QTemporaryDir folder;
    QString autostart = folder.filePath(QStringLiteral("config/autostart"));
    QString bundle = folder.filePath(QStringLiteral("a b\\c $d \"e\" 100% `f` ü/Agent.app"));
    XdgLoginItems list{autostart};
};

TEST_F(XdgLoginItemsTest, AddFindAndRemoveABundle)
{
    EXPECT_TRUE(list.items().isEmpty());
    ASSERT_TRUE(list.append(bundle));
    ASSERT_TRUE(list.append(bundle)) << "takes its own earlier entry's place";
    const auto items = list.items();
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0].path, bundle);
    EXPECT_EQ(items[0].displayName, QStringLiteral("Agent"));
    EXPECT_FALSE(items[0].disabledByUser);
    const QByteArray exec = "\nExec=\"" + folder.path().toUtf8() +
                            "/a b\\\\\\\\c \\\\$d \\\\\"e\\\\\" 100%% \\\\`f\\\\` ü/Agent.app/Contents/bin/Agent\"\n";
    EXPECT_TRUE(contentOf(entry("com.zep.Agent.desktop")).contains(exec))
        << contentOf(entry("com.zep.Agent.desktop")).toStdString();

    ASSERT_TRUE(QDir(bundle).removeRecursively());
    EXPECT_TRUE(list.items().at(0).path.isEmpty()) << "the bundle is gone";
    EXPECT_TRUE(list.remove(items[0]));
    EXPECT_FALSE(list.remove(items[0]));
    EXPECT_TRUE(QDir(autostart).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    EXPECT_FALSE(list.append(bundle));
}

TEST_F(XdgLoginItemsTest, LeaveWhatTheUserSwitchedOff)
{
    ASSERT_TRUE(list.append(bundle));
    const QByteArray enabled = contentOf(entry("com.zep.Agent.desktop"));
    for (const QByteArray& switchedOff : {enabled + "Hidden=true\n", enabled + "X-GNOME-Autostart-enabled=false\n",
                                          QByteArray("[Desktop Entry]\nHidden=true\n")}) {
        ASSERT_TRUE(writeFile(entry("com.zep.Agent.desktop"), switchedOff));
        ASSERT_EQ(list.items().size(), 1);
        EXPECT_TRUE(list.items().at(0).disabledByUser);
        EXPECT_TRUE(list.append(bundle));
        EXPECT_FALSE(list.remove(list.items().at(0)));
        EXPECT_EQ(contentOf(entry("com.zep.Agent.desktop")), switchedOff);
        EXPECT_EQ(list.items().size(), 1);
    }
}

TEST_F(XdgLoginItemsTest, TouchNoEntriesOfOthers)
{
    ASSERT_TRUE(QDir().mkpath(entry("folder.desktop")));
    const QByteArray other = "# comment\n[Other]\nName=no\n[Desktop Entry]\nType=Application\nName[de]=nein\n"
                             "Name = Other\nExec=/bin/true --flag %U\nHidden=false\n[Desktop Action x]\nHidden=true\n";
    ASSERT_TRUE(writeFile(entry("com.zep.Agent.desktop"), other));
    ASSERT_TRUE(writeFile(entry("broken.desktop"), "[Desktop Entry]\nType=Application\nExec=\"/bin/true\nName=b\n"));
    ASSERT_TRUE(writeFile(entry("link.desktop"), "[Desktop Entry]\nType=Link\nName=l\n"));
    ASSERT_TRUE(list.append(bundle));
    QStringList found;
    for (const auto& item : list.items()) {
        EXPECT_FALSE(item.disabledByUser);
        found += item.identifier + u' ' + item.displayName + u' ' + QString(item.path).remove(folder.path());
    }
    EXPECT_EQ(found,
              QStringList({QStringLiteral("broken.desktop b "),
                           QStringLiteral("com.zep.Agent-2.desktop Agent ") + QString(bundle).remove(folder.path()),
                           QStringLiteral("com.zep.Agent.desktop Other /bin/true")}));
    EXPECT_EQ(contentOf(entry("com.zep.Agent.desktop")), other);
}

} // namespace
