#include "InstallRig.h"
#include "support/ImageBuilder.h"
#include "support/QtPrinting.h"

#include <QFileInfo>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

using namespace quarry;
using namespace quarry::test;

namespace {

using End = UpdateInstallation::End;
using namespace Qt::Literals::StringLiterals;

TEST(UpdateInstall, ReplacesTheOldVersionAndStartsTheNewOne)
{
    InstallRig rig;
    ASSERT_TRUE(rig.accept());
    EXPECT_EQ(rig.server.payloads(), QStringList{u"120400|1.0|QS1|NOLOG"_s});
    EXPECT_FALSE(rig.updater->isInstalling());
    bool wasInstalling = false;
    ASSERT_TRUE(rig.events.runUntil([&] {
        wasInstalling = wasInstalling || rig.updater->isInstalling();
        if (rig.alerts.isShowing()) {
            EXPECT_EQ(rig.installedVersion(), "#!/bin/sh\necho 2.0\n") << "told only when it is true";
            rig.alerts.answer(0);
        }
        return rig.terminated || rig.end == End::Failed;
    }));
    EXPECT_TRUE(rig.terminated && wasInstalling);
    EXPECT_EQ(rig.end, End::Installed);
    EXPECT_EQ(rig.alerts.titles(), QStringList{u"Updater_1.0_Install Finish Title"_s});
    EXPECT_EQ(rig.notifications.names, QStringList{u"QUIT_EVERYBODY_NOTIFICATION QS1"_s});
    EXPECT_EQ(rig.workspace.opened,
              (QStringList{rig.installed, rig.installed + u"/Contents/Agents/QuarrySpotterAgent.app"_s}));
    EXPECT_EQ(rig.workspace.addresses, QStringList());
    EXPECT_EQ(rig.leftOver(), QStringList());
    EXPECT_EQ(InstallRig::namesIn(rig.trash()), QStringList{u"QuarrySpotter.app"_s});
    for (const char* path : {"", "/Contents", "/Contents/Info.plist", "/Contents/bin/QuarrySpotter"})
        EXPECT_TRUE(QFile::permissions(rig.installed + QString::fromUtf8(path)).testFlag(QFile::WriteOwner)) << path;
    EXPECT_TRUE(QFileInfo(rig.installed + u"/Contents/bin/QuarrySpotter"_s).isExecutable());

    EXPECT_EQ(rig.window.calls, (QStringList{u"center"_s, u"indeterminate"_s, u"Updater_1.0_Status Preparing"_s,
                                             u"Updater_1.0_Status Downloading"_s, u"determinate"_s, u"start time"_s,
                                             u"indeterminate"_s, u"Updater_1.0_Status Installing"_s, u"hide"_s}));
    EXPECT_EQ(rig.window.received, static_cast<double>(rig.server.files["/QS-2.0.iso"].size()));
    EXPECT_EQ(rig.window.expected, rig.window.received);
    using std::chrono::milliseconds;
    EXPECT_EQ(rig.events.delays, (std::vector{milliseconds(500), milliseconds(100), milliseconds(250)}));
}

TEST(UpdateInstall, WithoutAKeyNeedsNoSignature)
{
    InstallRig rig;
    rig.product.needsSignature = false;
    rig.server.files.remove("/QS-2.0.iso.sig");
    rig.server.compresses = false;
    ASSERT_TRUE(rig.accept());
    ASSERT_TRUE(rig.runToEnd());
    EXPECT_EQ(rig.installedVersion(), "#!/bin/sh\necho 2.0\n");
    EXPECT_EQ(rig.leftOver(), QStringList());
}

/// Every way in which an update goes wrong: the old version stays, and nothing else.
TEST(UpdateInstall, KeepsTheOldVersionAndLeavesNothingWhenItFails)
{
    enum class Shown { Nothing, Image, Page }; // in the browser
    struct Case {
        const char* name;
        std::function<void(InstallRig&)> prepare;
        const char* message; // of the failure alert; null: none
        Shown shown = Shown::Nothing;
        bool othersQuit = false;
    };
    const auto cut = [](const QByteArray& declared, const QByteArray& sent) {
        return [declared, sent](const LoopbackServer::Send& send, LoopbackServer&) {
            send("HTTP/1.1 200 OK\r\nContent-Length: " + declared + "\r\n\r\n" + sent);
        };
    };
    const char* const untrusted = "Updater_1.0_Untrusted image message";
    const char* const notOpened = "Updater_1.0_Impossible to download message";
    const char* const notInstalled = "Updater_1.0_Impossible to install message";
    const Case cases[] = {
        {"another maker's signature",
         [](InstallRig& rig) {
             rig.server.files["/QS-2.0.iso.sig"] =
                 *signatureOf(rig.server.files["/QS-2.0.iso"], makeSigningKey()->seed);
         },
         untrusted},
        {"an image changed behind the signature", [](InstallRig& rig) { rig.server.files["/QS-2.0.iso"].back() = 'x'; },
         untrusted},
        {"a signature that is none", [](InstallRig& rig) { rig.server.files["/QS-2.0.iso.sig"] = "yes"; }, untrusted},
        {"a key that cannot be read", [](InstallRig& rig) { rig.product.publicKey.clear(); }, untrusted},
        {"no signature", [](InstallRig& rig) { rig.server.files.remove("/QS-2.0.iso.sig"); }, nullptr, Shown::Page},
        {"no image", [](InstallRig& rig) { rig.server.files.remove("/QS-2.0.iso"); }, nullptr, Shown::Page},
        {"an image that is cut",
         [&](InstallRig& rig) { rig.server.answers["/QS-2.0.iso"] = cut("500000", QByteArray(250000, 'x')); }, nullptr,
         Shown::Page},
        {"an image that stalls",
         [](InstallRig& rig) {
             rig.server.answers["/QS-2.0.iso"] = [](const LoopbackServer::Send& send, LoopbackServer& server) {
                 send("HTTP/1.1 200 OK\r\nContent-Length: 500000\r\n\r\n" + QByteArray(1000, 'x'));
                 server.waitForClient();
             };
         },
         nullptr, Shown::Page},
        {"an image larger than any",
         [&](InstallRig& rig) { rig.server.answers["/QS-2.0.iso"] = cut("50000000", QByteArray(1000, 'x')); }, nullptr,
         Shown::Page},
        {"a way that leads off this machine",
         [](InstallRig& rig) {
             rig.server.answers["/QS-2.0.iso"] = [](const LoopbackServer::Send& send, LoopbackServer&) {
                 send("HTTP/1.1 302 Found\r\nLocation: http://192.0.2.1/QS-2.0.iso\r\nContent-Length: 0\r\n\r\n");
             };
         },
         nullptr, Shown::Page},
        {"an address that is not HTTPS",
         [](InstallRig& rig) { rig.server.reply = "2.0;101500;https://a.example/p;http://192.0.2.1/QS-2.0.iso"; },
         untrusted},
        {"an image that does not mount", [](InstallRig& rig) { rig.serveImage(QByteArray(100000, 'x')); }, notOpened,
         Shown::Image},
        {"an image with a link outside",
         [](InstallRig& rig) {
             const QString image = rig.mountFolder + u".made"_s;
             ASSERT_TRUE(buildImage(image, {{"QuarrySpotter.app", AE_IFLNK, {}, "/etc"}}));
             rig.serveImage(contentOf(image));
             QFile::remove(image);
         },
         notOpened, Shown::Image},
        {"somebody else's folder in the way",
         [](InstallRig& rig) { InstallRig::makeBundle(rig.mountFolder + u"/QuarrySpotter.app"_s, "6.6.6"); }, notOpened,
         Shown::Image},
        {"an image with an older version", [](InstallRig& rig) { rig.serveVersion("0.9"); }, untrusted},
        {"an image with this version", [](InstallRig& rig) { rig.serveVersion("1.0"); }, untrusted},
        {"an image without the bundle",
         [](InstallRig& rig) {
             const QTemporaryDir made;
             InstallRig::makeBundle(made.filePath(u"Other.app"_s), "2.0");
             rig.serveImageOf(made.filePath(u"Other.app"_s));
         },
         untrusted},
        {"a bundle without its program",
         [](InstallRig& rig) {
             const QTemporaryDir made;
             InstallRig::makeBundle(made.filePath(u"QuarrySpotter.app"_s), "2.0");
             QFile::remove(made.filePath(u"QuarrySpotter.app/Contents/bin/QuarrySpotter"_s));
             rig.serveImageOf(made.filePath(u"QuarrySpotter.app"_s));
         },
         untrusted},
        {"no space for the bundle", [](InstallRig& rig) { rig.files.isFull = true; }, "Updater_1.0_No space message"},
        {"a copy that fails", [](InstallRig& rig) { rig.files.failCopy = true; }, notInstalled, Shown::Image},
        {"a bundle that does not get into place", [](InstallRig& rig) { rig.files.failRename = true; }, notInstalled,
         Shown::Image, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        InstallRig rig;
        c.prepare(rig);
        const QStringList before = InstallRig::namesIn(rig.mountFolder);
        ASSERT_TRUE(rig.accept());
        ASSERT_TRUE(rig.runToEnd());
        EXPECT_EQ(rig.end, End::Failed);
        EXPECT_EQ(rig.installedVersion(), "#!/bin/sh\necho 1.0\n");
        EXPECT_EQ(InstallRig::namesIn(rig.trash()), QStringList());
        EXPECT_EQ(InstallRig::namesIn(rig.mountFolder), before);
        EXPECT_EQ(rig.leftOver(), before.isEmpty() ? QStringList() : QStringList{u"QS-2.0"_s});
        EXPECT_FALSE(rig.window.showing || rig.terminated);
        ASSERT_EQ(rig.alerts.shown.size(), c.message ? 1U : 0U);
        if (c.message) {
            EXPECT_EQ(rig.alerts.shown.front().message, QString::fromUtf8(c.message));
        }
        const QStringList shown[] = {
            {}, {QString::fromLatin1(rig.server.address("/QS-2.0.iso"))}, {u"https://a.example/p"_s}};
        EXPECT_EQ(rig.workspace.addresses, shown[static_cast<std::size_t>(c.shown)]);
        EXPECT_EQ(rig.notifications.names.size(), c.othersQuit ? 1 : 0);
        EXPECT_EQ(rig.workspace.opened.size(), c.othersQuit ? 1 : 0) << "the agent runs again";
    }
}

TEST(UpdateInstall, CancelAtHalfKeepsTheFileThatWasThere)
{
    InstallRig rig;
    rig.server.answers["/QS-2.0.iso"] = [](const LoopbackServer::Send& send, LoopbackServer& server) {
        send("HTTP/1.1 200 OK\r\nContent-Length: 500000\r\n\r\n" + QByteArray(250000, 'x'));
        server.waitForClient();
    };
    ASSERT_TRUE(QDir().mkpath(rig.parts.downloadsFolder));
    ASSERT_TRUE(writeFile(rig.parts.downloadsFolder + u"/QS-2.0.iso"_s, "mine"));
    ASSERT_TRUE(rig.accept());
    ASSERT_TRUE(rig.events.runUntil([&] { return rig.window.received > 0 || rig.end; }));
    EXPECT_EQ(rig.window.expected, 500000);
    rig.updater->cancelUpdate();
    EXPECT_EQ(rig.end, End::Cancelled);
    EXPECT_FALSE(rig.window.showing);
    EXPECT_EQ(rig.leftOver(), QStringList{u"QS-2.0.iso"_s});
    EXPECT_EQ(contentOf(rig.parts.downloadsFolder + u"/QS-2.0.iso"_s), "mine");

    // The next try is not in its way.
    rig.server.answers.clear();
    rig.end.reset();
    rig.updater->controllerResult(1);
    ASSERT_TRUE(rig.runToEnd());
    EXPECT_EQ(rig.installedVersion(), "#!/bin/sh\necho 2.0\n");
    EXPECT_EQ(rig.leftOver(), QStringList());
}

TEST(UpdateInstall, WaitsWhileTheOldVersionDoesNotGoToTheTrash)
{
    for (const bool givesUp : {false, true}) {
        InstallRig rig;
        rig.files.failTrash = true;
        ASSERT_TRUE(rig.accept());
        ASSERT_TRUE(rig.events.runUntil([&] { return rig.end || rig.events.delays.size() > 20; }));
        ASSERT_FALSE(rig.end) << "it looks again and again";
        EXPECT_EQ(rig.installedVersion(), "#!/bin/sh\necho 1.0\n");
        if (givesUp)
            rig.updater->cancelUpdate();
        else
            ASSERT_TRUE(QDir(rig.installed).removeRecursively());
        ASSERT_TRUE(rig.runToEnd());
        EXPECT_EQ(rig.end, givesUp ? End::Cancelled : End::Installed);
        EXPECT_EQ(rig.installedVersion(), givesUp ? "#!/bin/sh\necho 1.0\n" : "#!/bin/sh\necho 2.0\n");
        EXPECT_EQ(rig.leftOver(), QStringList());
    }
}

TEST(UpdateInstall, LeavesNothingWhenTheProgramEndsMeanwhile)
{
    InstallRig rig;
    rig.files.failTrash = true;
    ASSERT_TRUE(rig.accept());
    ASSERT_TRUE(rig.events.runUntil([&] { return rig.end || rig.events.delays.size() > 2; }));
    EXPECT_NE(rig.leftOver(), QStringList());
    rig.updater.reset();
    EXPECT_EQ(rig.leftOver(), QStringList());
    EXPECT_EQ(rig.installedVersion(), "#!/bin/sh\necho 1.0\n");
}

TEST(UpdateInstall, TellsOfADiskThatFillsUpDuringTheDownload)
{
    InstallRig rig;
    rig.serveImage(QByteArray(2 << 20, 'x'));
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit limit{1 << 20, before.rlim_max};
    ASSERT_NE(std::signal(SIGXFSZ, SIG_IGN), SIG_ERR);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const bool ended = rig.accept() && rig.runToEnd();
    setrlimit(RLIMIT_FSIZE, &before);
    ASSERT_TRUE(ended);
    EXPECT_EQ(rig.end, End::Failed);
    EXPECT_GT(rig.window.received, 0);
    EXPECT_LT(rig.window.received, 2 << 20);
    EXPECT_EQ(rig.workspace.addresses, QStringList{u"https://a.example/p"_s});
    EXPECT_EQ(rig.leftOver(), QStringList());
}

} // namespace
