#include "SoftwareUpdateRig.h"
#include "support/ImageBuilder.h"
#include "updater/ImageSignature.h"

#include <QFileInfo>

#include <atomic>
#include <csignal>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Another program of the product, which quits when an install begins, and not before.
std::unique_ptr<QProcess> startGateway(const SoftwareUpdateRig& rig)
{
    auto gateway = rig.start(QStringLiteral(QUARRY_BUNDLE_DIR "/bin/quarry-gateway"),
                             {u"--port"_s, u"0"_s, u"--folder"_s, rig.home.path() + u"/Library"_s});
    EXPECT_TRUE(gateway->waitForReadyRead(60000)) << gateway->readAllStandardError().toStdString();
    return gateway;
}

void expectVersion1AndNothingElse(const SoftwareUpdateRig& rig)
{
    EXPECT_EQ(rig.startedVersion(), "1.0");
    EXPECT_EQ(SoftwareUpdateRig::ended(*rig.start(rig.quarry(), {u"--version"_s})).status, 0);
    EXPECT_EQ(rig.leftOver(), QStringList());
    EXPECT_FALSE(QFileInfo::exists(rig.inHome("agents"))) << "no agent was sent away";
}

TEST(SoftwareUpdate, InstallsTheNextVersionAndStartsIt)
{
    SoftwareUpdateRig rig;
    const auto gateway = startGateway(rig);
    ASSERT_TRUE(writeFile(rig.home->updaterFlagFile(), ""));

    const Ran told = rig.update({u"--check"_s});
    EXPECT_EQ(told.status, 0) << told.err.toStdString();
    EXPECT_TRUE(told.out.contains(QLatin1String(rig.newVersion + " is available; you have 1.0")));
    const Ran offered = rig.update({}); // There is nobody to ask.
    EXPECT_TRUE(offered.out.contains(u"quarry update --install"_s)) << offered.out.toStdString();
    EXPECT_FALSE(QFileInfo::exists(rig.home->updaterFlagFile())) << "the offer was made";
    expectVersion1AndNothingElse(rig);
    QFile::remove(rig.inHome("started"));

    const Ran ran = rig.update({u"--install"_s});
    EXPECT_EQ(ran.status, 0) << ran.err.toStdString();
    EXPECT_TRUE(ran.out.contains(u"is installed"_s)) << ran.out.toStdString();
    for (const char* note : {"started", "agents"})
        EXPECT_TRUE(waitFor([&] { return contentOf(rig.inHome(note)) == rig.newVersion + '\n'; })) << note;
    EXPECT_TRUE(gateway->waitForFinished(60000)) << "every program quits";
    EXPECT_EQ(gateway->exitCode(), 0);
    EXPECT_EQ(rig.leftOver(), QStringList());
    EXPECT_EQ(SoftwareUpdateRig::namesIn(rig.inHome(".local/share/Trash/files")), QStringList{u"QuarrySpotter.app"_s});
    EXPECT_FALSE(QFileInfo::exists(rig.inHome("browser")));

    const Ran again = rig.update({u"--install"_s}); // By the new version's own program.
    EXPECT_EQ(again.status, 0) << again.err.toStdString();
    EXPECT_TRUE(again.out.contains(u"up to date"_s)) << again.out.toStdString();
    EXPECT_TRUE(rig.server->payloads().last().contains(QLatin1String('|' + rig.newVersion + "|QS1|NOLOG")));
}

/// What goes wrong on the maker's side, or on the way: version 1 stays, and nothing else.
TEST(SoftwareUpdate, LeavesVersion1AloneWhenItFails)
{
    struct Case {
        const char* name;
        std::function<void(SoftwareUpdateRig&)> prepare;
        const char* said;
        const char* browser = nullptr; ///< What the user is sent to.
    };
    const Case cases[] = {
        {"another maker's signature",
         [](SoftwareUpdateRig& rig) {
             rig.server->files[rig.image + ".sig"] = *signatureOf(rig.server->files[rig.image], makeSigningKey()->seed);
         },
         "is not a newer version from"},
        {"a download that is cut",
         [](SoftwareUpdateRig& rig) {
             const QByteArray bytes = rig.server->files[rig.image];
             rig.server->answers[rig.image] = [bytes](const LoopbackServer::Send& send, LoopbackServer&) {
                 send("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(bytes.size()) + "\r\n\r\n" +
                      bytes.first(bytes.size() / 2));
             };
         },
         "was not loaded", "/page"},
        {"paths that lead outside",
         [](SoftwareUpdateRig& rig) {
             const QString made = rig.inHome("made");
             ASSERT_TRUE(buildImage(
                 made, {{"QuarrySpotter.app", AE_IFDIR}, {"../quarry-was-here-" + rig.newVersion, AE_IFREG, "x"}}));
             rig.serveSigned(contentOf(made));
         },
         "could not be opened", ".iso"},
        {"an image that does not mount", [](SoftwareUpdateRig& rig) { rig.serveSigned("no image at all"); },
         "could not be opened", ".iso"},
        {"a script that answers nonsense",
         [](SoftwareUpdateRig& rig) { rig.server->reply = "<html><body>Welcome; stranger;</body></html>"; },
         "makes no sense"},
        {"a server that has gone", [](SoftwareUpdateRig& rig) { rig.server.reset(); }, "does not answer"},
    };
    for (const Case& given : cases) {
        SCOPED_TRACE(given.name);
        SoftwareUpdateRig rig;
        const auto gateway = startGateway(rig);
        given.prepare(rig);
        const Ran ran = rig.update({u"--install"_s});
        EXPECT_EQ(ran.status, 1) << ran.out.toStdString();
        EXPECT_TRUE(ran.err.contains(QString::fromUtf8(given.said))) << ran.err.toStdString();
        expectVersion1AndNothingElse(rig);
        EXPECT_EQ(gateway->state(), QProcess::Running) << "nobody else was disturbed";
        gateway->kill();
        gateway->waitForFinished();
        EXPECT_FALSE(QFileInfo::exists(u"/tmp/quarry-was-here-"_s + QLatin1String(rig.newVersion)));
        if (given.browser)
            EXPECT_TRUE(waitFor([&] { return contentOf(rig.inHome("browser")).trimmed().endsWith(given.browser); }));
        else
            EXPECT_FALSE(QFileInfo::exists(rig.inHome("browser")));
    }
}

TEST(SoftwareUpdate, LeavesNothingWhenItIsInterruptedAtHalf)
{
    SoftwareUpdateRig rig;
    std::atomic<bool> isAtHalf = false;
    const QByteArray bytes = rig.server->files[rig.image];
    rig.server->answers[rig.image] = [&](const LoopbackServer::Send& send, LoopbackServer& server) {
        isAtHalf = send("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(bytes.size()) + "\r\n\r\n" +
                        bytes.first(bytes.size() / 2));
        server.waitForClient();
    };
    const auto update = rig.start(rig.quarry(), {u"update"_s, u"--install"_s});
    ASSERT_TRUE(waitFor([&] { return isAtHalf.load(); }));
    ASSERT_EQ(::kill(static_cast<pid_t>(update->processId()), SIGINT), 0);
    const Ran ran = SoftwareUpdateRig::ended(*update);
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.contains(u"nothing was changed"_s)) << ran.err.toStdString();
    expectVersion1AndNothingElse(rig);
}

/// A file system of its own, as large as it is told; gone afterwards.
class SmallDisk final {
public:
    explicit SmallDisk(qint64 bytes)
    {
        _isThere = QProcess::execute(u"mount"_s,
                                     {u"-t"_s, u"tmpfs"_s, u"-o"_s, u"size=%1"_s.arg(bytes), u"tmpfs"_s, path()}) == 0;
    }
    ~SmallDisk()
    {
        if (_isThere)
            QProcess::execute(u"umount"_s, {u"-l"_s, path()});
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    [[nodiscard]] bool isThere() const { return _isThere; }
    [[nodiscard]] QString path() const { return _folder.path(); }

private:
    QTemporaryDir _folder;
    bool _isThere = false;
};

TEST(SoftwareUpdate, NeedsRoomForTheNewVersionBesideTheOldOne)
{
    SoftwareUpdateRig rig;
    const SmallDisk disk(rig.server->files[rig.image].size() * 3 / 2);
    if (!disk.isThere())
        GTEST_SKIP() << "this user may not mount a small disk";
    rig.installed = disk.path() + u"/QuarrySpotter.app"_s;
    rig.makeBundle(rig.installed, "1.0");
    const Ran ran = rig.update({u"--install"_s});
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.contains(u"not enough free space"_s)) << ran.err.toStdString();
    expectVersion1AndNothingElse(rig);
}

} // namespace
