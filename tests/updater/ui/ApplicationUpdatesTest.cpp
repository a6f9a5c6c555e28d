#include "updater/ui/ApplicationUpdates.h"

#include "../InstallRig.h"
#include "UpdaterScreen.h"
#include "platform/QtEventTimers.h"
#include "support/QtPrinting.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QTextBrowser>

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <optional>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The main application with version 1, and version 2 on a server.
class ApplicationUpdatesTest : public ::testing::Test {
protected:
    ApplicationUpdatesTest()
    {
        qputenv("HOME", home.path().toUtf8());
        qunsetenv("XDG_DATA_HOME");
        InstallRig::makeBundle(installed, "1.0");
        const QString contents = installed + u"/Contents/"_s;
        QFile::copy(QStringLiteral(QUARRY_BUNDLE_DIR "/bin/DiskImageTool"), contents + u"bin/DiskImageTool"_s);
        makeHelper(installed);
        const SigningKey key = *makeSigningKey();
        QByteArray info = contentOf(contents + u"Info.plist"_s);
        info.replace("</dict>", "<key>QSUpdateScriptURL</key><string>" + server.address() +
                                    "</string><key>QSUpdatePublicKey</key><string>" + key.publicKey.toBase64() +
                                    "</string></dict>");
        writeFile(contents + u"Info.plist"_s, info);

        const QTemporaryDir made;
        InstallRig::makeBundle(made.filePath(u"QuarrySpotter.app"_s), version);
        makeHelper(made.filePath(u"QuarrySpotter.app"_s));
        const QString file = home.path() + u"/made"_s;
        EXPECT_EQ(writeImage(made.filePath(u"QuarrySpotter.app"_s), file), QString());
        bytes = contentOf(file);
        QFile::remove(file);
        server.files[image] = bytes;
        server.files[image + ".sig"] = *signatureOf(bytes, key.seed);
        server.files["/notes"] =
            "{\\rtf1{\\b QuarrySpotter 2.0}\\par \\bullet  Folders can be exported as a feed.\\par "
            "\\bullet  Refreshes of many queries take half the time.\\par \\bullet  The blacklist "
            "shows which rule catches an address.\\par}";
        server.reply = version + ";101500;https://a.example/p;" + server.address(image);
        updates.emplace(ApplicationUpdates::Parts{home, installed, clock, events, notifications, workspace, files,
                                                  texts, [this] { hasQuit = true; }});
    }
    static void makeHelper(const QString& bundle)
    {
        const QString folder = bundle + u"/Contents/Agents/QuarrySpotterAgent.app/Contents/bin"_s;
        QDir().mkpath(folder);
        QFile::copy(u"/bin/true"_s, folder + u"/RelaunchApp"_s);
    }
    /// The image's second half waits for the gate.
    void sendInHalves()
    {
        server.answers[image] = [this](const LoopbackServer::Send& send, LoopbackServer&) {
            send("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(bytes.size()) + "\r\n\r\n" +
                 bytes.first(bytes.size() / 2));
            gate.lock();
            send(bytes.sliced(bytes.size() / 2));
            gate.unlock();
        };
    }
    [[nodiscard]] QDialog* shownWindow() const
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == u"updateWaningWin"_s && window->isVisible())
                return qobject_cast<QDialog*>(window);
        }
        return nullptr;
    }
    /// Presses a button as soon as it is there.
    [[nodiscard]] static bool press(const QString& text)
    {
        if (!happens([&] { return openButton(text) != nullptr; }))
            return false;
        openButton(text)->click();
        return true;
    }
    [[nodiscard]] static bool alertWith(const QString& text)
    {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [&](QWidget* window) {
            const auto* const box = qobject_cast<QMessageBox*>(window);
            return box && box->isVisible() && box->informativeText().contains(text);
        });
    }
    [[nodiscard]] QByteArray installedVersion() const
    {
        return contentOf(installed + u"/Contents/bin/QuarrySpotter"_s);
    }

    TemporaryHome home;
    QTemporaryDir place;
    QString installed = place.filePath(u"QuarrySpotter.app"_s);
    QByteArray version = "2." + QByteArray::number(QCoreApplication::applicationPid());
    QByteArray image = "/QS-" + version + ".iso";
    QByteArray bytes;
    std::mutex gate;
    ScriptServer server;
    SystemClock clock;
    QtEventTimers events;
    LocalNotifications notifications;
    NotingWorkspace workspace;
    DiskFileStore files;
    StringTable texts = textsWithNotes(server.address("/notes"));
    bool hasQuit = false;
    std::optional<ApplicationUpdates> updates; ///< Made once the bundle is there.
};

TEST_F(ApplicationUpdatesTest, TakesUpAnAcceptedOfferAndInstallsIt)
{
    setDark(false);
    sendInHalves();
    gate.lock();
    updates->takeUpOffer();
    EXPECT_TRUE(server.payloads().isEmpty()) << "nobody accepted one";
    ASSERT_TRUE(writeFile(home->updaterFlagFile(), ""));
    updates->takeUpOffer();
    EXPECT_FALSE(QFile::exists(home->updaterFlagFile()));

    ASSERT_TRUE(happens([&] { return shownWindow() != nullptr; }));
    auto* const notes = shownWindow()->findChild<QTextBrowser*>(u"releaseNotesView"_s);
    ASSERT_TRUE(happens([&] { return notes->toPlainText().contains(u"feed"_s); }));
    keepPicture(shownWindow(), u"update-offer"_s);
    ASSERT_TRUE(press(u"Install"_s));
    auto* const line = shownWindow()->findChild<QLabel*>(u"progresssTF"_s);
    ASSERT_TRUE(happens([&] { return line->text().contains(u"MB"_s); }));
    keepPicture(shownWindow(), u"update-progress"_s);
    updates->checkForUpdates();
    EXPECT_EQ(server.payloads().size(), 1) << "the window comes to the front instead";
    gate.unlock();
    ASSERT_TRUE(press(u"Restart"_s));
    ASSERT_TRUE(happens([&] { return hasQuit; }));
    EXPECT_EQ(installedVersion(), "#!/bin/sh\necho " + version + '\n');
    EXPECT_EQ(workspace.opened,
              (QStringList{u"%1/Contents/Agents/QuarrySpotterAgent.app/Contents/bin/RelaunchApp %1 %2"_s.arg(
                               installed, QString::number(QCoreApplication::applicationPid())),
                           installed + u"/Contents/Agents/QuarrySpotterAgent.app"_s}));
    EXPECT_EQ(notifications.names, QStringList{u"QUIT_EVERYBODY_NOTIFICATION QS1"_s});
    EXPECT_EQ(InstallRig::namesIn(home.path() + u"/Downloads"_s), QStringList());
}

TEST_F(ApplicationUpdatesTest, LeavesEverythingAsItWasWhenCancelledAtHalf)
{
    setDark(true);
    sendInHalves();
    gate.lock();
    // As the agent does while the main application is open.
    notifications.post(u"NEW_VERSION_AVAILABLE_NOTIFICATION QS1"_s, {});
    ASSERT_TRUE(happens([&] { return shownWindow() != nullptr; }));
    auto* const notes = shownWindow()->findChild<QTextBrowser*>(u"releaseNotesView"_s);
    ASSERT_TRUE(happens([&] { return notes->toPlainText().contains(u"feed"_s); }));
    keepPicture(shownWindow(), u"update-offer-dark"_s);
    ASSERT_TRUE(press(u"Install"_s));
    auto* const line = shownWindow()->findChild<QLabel*>(u"progresssTF"_s);
    ASSERT_TRUE(happens([&] { return line->text().contains(u"MB"_s); }));
    keepPicture(shownWindow(), u"update-progress-dark"_s);
    ASSERT_TRUE(press(u"Cancel"_s));
    EXPECT_EQ(shownWindow(), nullptr);
    gate.unlock();
    EXPECT_EQ(InstallRig::namesIn(home.path() + u"/Downloads"_s), QStringList());
    EXPECT_EQ(installedVersion(), "#!/bin/sh\necho 1.0\n");
    EXPECT_TRUE(workspace.opened.isEmpty());

    notifications.post(u"NEW_VERSION_AVAILABLE_NOTIFICATION QS1"_s, {});
    ASSERT_TRUE(happens([&] { return server.payloads().size() == 2; }));
    updates->checkForUpdates();
    EXPECT_TRUE(happens([&] { return shownWindow() != nullptr; })) << "a check that was asked for is not held back";
    setDark(false);
}

TEST_F(ApplicationUpdatesTest, AnswersACheckThatFindsNothing)
{
    server.reply = "1.0;101500;https://a.example/p;" + server.address(image);
    updates->checkForUpdates();
    EXPECT_TRUE(press(u"OK"_s)) << "up to date";
    server.answers["/update"] = [](const LoopbackServer::Send&, LoopbackServer&) {};
    updates->checkForUpdates();
    EXPECT_TRUE(happens([] { return alertWith(u"did not answer"_s); }));
    EXPECT_TRUE(press(u"OK"_s));
    EXPECT_EQ(shownWindow(), nullptr);
}

} // namespace
