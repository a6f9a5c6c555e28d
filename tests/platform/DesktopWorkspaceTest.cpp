#include "platform/DesktopWorkspace.h"

#include "support/QtPrinting.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace quarry;

namespace {

/// An environment variable with another value for a while.
class Environment final {
public:
    Environment(const char* name, const QByteArray& value)
        : _name(name), _before(qgetenv(name)), _isSet(qEnvironmentVariableIsSet(name))
    {
        value.isNull() ? qunsetenv(name) : qputenv(name, value);
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment() { _isSet ? qputenv(_name, _before) : qunsetenv(_name); }

private:
    const char* _name;
    QByteArray _before;
    bool _isSet;
};

/// Programs that write into a pipe what they were started with.
class DesktopWorkspaceTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(::mkfifo(pipe.toUtf8().constData(), 0600), 0);
        makeProgram(QStringLiteral("xdg-open"));
        makeProgram(QStringLiteral("App.app/Contents/bin/App"));
        ASSERT_TRUE(test::writeFile(folder.filePath(QStringLiteral("App.app/Contents/Info.plist")),
                                    "<plist><dict><key>CFBundleExecutable</key><string>App</string></dict></plist>"));
    }
    void makeProgram(const QString& name)
    {
        const QString path = folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        ASSERT_TRUE(test::writeFile(path, "#!/bin/sh\n(echo \"$(basename \"$0\")\"; for a in \"$@\"; do echo \"<$a>\"; "
                                          "done) >\"$PIPE_OF_TEST\"\n"));
        ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    /// What the program that was just started says; waits for its end.
    [[nodiscard]] QString said() const { return QString::fromUtf8(test::contentOf(pipe)); }

    QTemporaryDir folder;
    QString pipe = folder.filePath(QStringLiteral("pipe"));
    QString bundle = folder.filePath(QStringLiteral("App.app"));
    Environment output{"PIPE_OF_TEST", pipe.toUtf8()};
    Environment programs{"PATH", folder.path().toUtf8() + ":" + qgetenv("PATH")};
    DesktopWorkspace workspace;
};

TEST_F(DesktopWorkspaceTest, StartsBundlesAndPrograms)
{
    ASSERT_TRUE(workspace.openBundle(bundle));
    EXPECT_EQ(said(), QStringLiteral("App\n"));
    ASSERT_TRUE(workspace.openFile(QStringLiteral("a  b.qsexport"), bundle + QLatin1Char('/')));
    EXPECT_EQ(said(), QStringLiteral("App\n<%1>\n").arg(QDir::currentPath() + QStringLiteral("/a  b.qsexport")));
    ASSERT_TRUE(workspace.launch(bundle + QStringLiteral("/Contents/bin/App"), {QString(), QStringLiteral("-x")}));
    EXPECT_EQ(said(), QStringLiteral("App\n<>\n<-x>\n"));
    EXPECT_FALSE(workspace.openBundle(folder.filePath(QStringLiteral("None.app"))));
    EXPECT_FALSE(workspace.launch(QStringLiteral("/no/such/program"), {}));
}

TEST_F(DesktopWorkspaceTest, HandsOnlyAddressesToTheDesktop)
{
    for (const QString& address :
         {QStringLiteral("http://127.0.0.1/?a=1&b=2"), QStringLiteral("ftp://127.0.0.1/a"), QStringLiteral("/a b")}) {
        ASSERT_TRUE(workspace.openAddress(address));
        EXPECT_EQ(said(), QStringLiteral("xdg-open\n<%1>\n").arg(address));
    }
    for (const char* address : {"", "--help", "x.desktop", "javascript:alert(1)", "smb://127.0.0.1/"})
        EXPECT_FALSE(workspace.openAddress(QLatin1String(address))) << address;
}

TEST_F(DesktopWorkspaceTest, MovesToTheTrashOfANewHomeFolder)
{
    const Environment home("HOME", folder.path().toUtf8());
    const Environment data("XDG_DATA_HOME", {});
    ASSERT_TRUE(workspace.moveToTrash(bundle + QLatin1Char('/')));
    EXPECT_FALSE(QFileInfo::exists(bundle));
    EXPECT_TRUE(
        QFileInfo(folder.filePath(QStringLiteral(".local/share/Trash/files/App.app/Contents/bin/App"))).isFile());
    EXPECT_FALSE(workspace.moveToTrash(bundle)) << "it is gone";
}

} // namespace
