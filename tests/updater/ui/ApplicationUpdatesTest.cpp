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

/// The main application with version 1.
class ApplicationUpdatesTest : public ::testing::Test, protected MakerRig {
protected:
    // Images are mounted under a name in a shared folder: the number keeps tests apart.
    ApplicationUpdatesTest() : MakerRig("2." + QByteArray::number(QCoreApplication::applicationPid()))
    {
        const QString file = installed + u"/Contents/Info.plist"_s;
        QByteArray info = contentOf(file);
        info.replace("</dict>", "<key>QSUpdateScriptURL</key><string>" + server.address() +
                                    "</string><key>QSUpdatePublicKey</key><string>" + key.publicKey.toBase64() +
                                    "</string></dict>");
        writeFile(file, info);
        server.files["/notes"] =
            "{\\rtf1{\\b QuarrySpotter 2.0}\\par \\bullet  Folders can be exported as a feed.\\par "
            "\\bullet  Refreshes of many queries take half the time.\\par \\bullet  The blacklist "
            "shows which rule catches an address.\\par}";
        updates.emplace(ApplicationUpdates::Parts{home, installed, clock, events, notifications, workspace, files,
                                                  texts, [this] { hasQuit = true; }});
    }
    /// The image's second half waits for the gate.
    void sendInHalves()
    {
        server.answers[image] = [gate = gate, bytes = server.files[image]](const LoopbackServer::Send& send,
                                                                           LoopbackServer&) {
            send("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(bytes.size()) + "\r\n\r\n" +
                 bytes.first(bytes.size() / 2));
            gate->lock();
            send(bytes.sliced(bytes.size() / 2));
            gate->unlock();
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
    /// Installs what the window offers; returns when the download has begun.
    void takeOffer(const QString& look)
    {
        ASSERT_TRUE(happens([&] { return shownWindow() != nullptr; }));
        auto* const notes = shownWindow()->findChild<QTextBrowser*>(u"releaseNotesView"_s);
        ASSERT_TRUE(happens([&] { return notes->toPlainText().contains(u"feed"_s); }));
        keepPicture(shownWindow(), u"update-offer"_s + look);
        ASSERT_TRUE(press(u"Install"_s));
        auto* const line = shownWindow()->findChild<QLabel*>(u"progresssTF"_s);
        ASSERT_TRUE(happens([&] { return line->text().contains(u"MB"_s); }));
        keepPicture(shownWindow(), u"update-progress"_s + look);
    }
    [[nodiscard]] static bool alertWith(const QString& text)
    {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [&](QWidget* window) {
            const auto* const box = qobject_cast<QMessageBox*>(window);
            return box && box->isVisible() && box->informativeText().contains(text);
        });
    }

    std::shared_ptr<std::mutex> gate = std::make_shared<std::mutex>(); ///< Also the server's threads'.
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
    gate->lock();
    updates->takeUpOffer();
    EXPECT_TRUE(server.payloads().isEmpty()) << "nobody accepted one";
    ASSERT_TRUE(writeFile(home->updaterFlagFile(), ""));
    updates->takeUpOffer();
    EXPECT_FALSE(QFile::exists(home->updaterFlagFile()));

    ASSERT_NO_FATAL_FAILURE(takeOffer(QString()));
    updates->checkForUpdates();
    EXPECT_EQ(server.payloads().size(), 1) << "the window comes to the front instead";
    gate->unlock();
    ASSERT_TRUE(press(u"Restart"_s));
    ASSERT_TRUE(happens([&] { return hasQuit; }));
    EXPECT_EQ(installedVersion(), "#!/bin/sh\necho " + newVersion + '\n');
    EXPECT_EQ(workspace.opened,
              (QStringList{u"%1/Contents/Agents/QuarrySpotterAgent.app/Contents/bin/RelaunchApp %1 %2"_s.arg(
                               installed, QString::number(QCoreApplication::applicationPid())),
                           installed + u"/Contents/Agents/QuarrySpotterAgent.app"_s}));
    EXPECT_EQ(notifications.names, QStringList{u"QUIT_EVERYBODY_NOTIFICATION QS1"_s});
    EXPECT_EQ(namesIn(home.path() + u"/Downloads"_s), QStringList());
}

TEST_F(ApplicationUpdatesTest, LeavesEverythingAsItWasWhenCancelledAtHalf)
{
    setDark(true);
    sendInHalves();
    gate->lock();
    // As the agent does while the main application is open.
    notifications.post(u"NEW_VERSION_AVAILABLE_NOTIFICATION QS1"_s, {});
    ASSERT_NO_FATAL_FAILURE(takeOffer(u"-dark"_s));
    ASSERT_TRUE(press(u"Cancel"_s));
    EXPECT_EQ(shownWindow(), nullptr);
    gate->unlock();
    EXPECT_EQ(namesIn(home.path() + u"/Downloads"_s), QStringList());
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
