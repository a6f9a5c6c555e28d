#pragma once

#include "support/DesktopDoubles.h"
#include "support/EagerTimers.h"
#include "support/ScriptServer.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"
#include "support/UpdaterDoubles.h"
#include "updater/ImageSignature.h"
#include "updater/ImageWriter.h"
#include "updater/LXUpdater.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quarry::test {

using namespace Qt::Literals::StringLiterals;

/// The real files, until they are told to fail.
class FailingBundleFiles final : public BundleFiles {
public:
    bool failCopy = false;
    bool failRename = false;
    bool failTrash = false;
    bool isFull = false;

    bool exists(const QString& path) const override { return _disk.exists(path); }
    std::int64_t size(const QString& folder) const override { return _disk.size(folder); }
    std::int64_t freeSpace(const QString& folder) const override { return isFull ? 100 : _disk.freeSpace(folder); }
    bool isWritable(const QString& folder) const override { return _disk.isWritable(folder); }
    std::optional<QString> makeStagingFolder(const QString& parent) override { return _disk.makeStagingFolder(parent); }
    QString copy(const QString& from, const QString& to) override
    {
        const QString error = _disk.copy(from, to);
        return failCopy ? u"No space left on device"_s : error;
    }
    bool rename(const QString& from, const QString& to) override { return !failRename && _disk.rename(from, to); }
    std::optional<QString> moveToTrash(const QString& path) override
    {
        return failTrash ? std::nullopt : _disk.moveToTrash(path);
    }
    bool putBack(const QString& trashed, const QString& path) override { return _disk.putBack(trashed, path); }
    void remove(const QString& path) override { _disk.remove(path); }

private:
    DiskBundleFiles _disk;
};

/// Version 1 installed in a folder and the next one on the maker's server, for a user with a home folder of their own.
class MakerRig {
public:
    explicit MakerRig(const QByteArray& nextVersion) : newVersion(nextVersion)
    {
        qputenv("HOME", home.path().toUtf8());
        qunsetenv("XDG_DATA_HOME");
        makeBundle(installed, "1.0");
        QFile::copy(QStringLiteral(QUARRY_BUNDLE_DIR "/bin/DiskImageTool"),
                    installed + u"/Contents/bin/DiskImageTool"_s);
        serveVersion(newVersion);
    }

    static void makeBundle(const QString& path, const QByteArray& version)
    {
        const QString contents = path + u"/Contents/"_s;
        QDir().mkpath(contents + u"bin"_s);
        QDir().mkpath(contents + u"Resources/English.lproj"_s);
        const QString agent = contents + u"Agents/QuarrySpotterAgent.app/Contents/bin/"_s;
        QDir().mkpath(agent);
        QFile::copy(u"/bin/true"_s, agent + u"RelaunchApp"_s);
        writeFile(contents + u"Info.plist"_s,
                  "<plist version=\"1.0\"><dict><key>CFBundleVersion</key><string>" + version +
                      "</string><key>CFBundleExecutable</key><string>QuarrySpotter</string></dict></plist>");
        const QString program = contents + u"bin/QuarrySpotter"_s;
        writeFile(program, "#!/bin/sh\necho " + version + '\n');
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    /// An image with that version, signed, and the reply that tells of the next one.
    void serveVersion(const QByteArray& version)
    {
        const QTemporaryDir made;
        const QString bundle = made.filePath(u"QuarrySpotter.app"_s);
        makeBundle(bundle, version);
        serveImageOf(bundle);
    }
    void serveImageOf(const QString& folder)
    {
        const QString made = home.path() + u"/made.iso"_s;
        EXPECT_EQ(writeImage(folder, made).toStdString(), "");
        serveImage(contentOf(made));
        QFile::remove(made);
    }
    void serveImage(const QByteArray& bytes)
    {
        server.files[image] = bytes;
        server.files[image + ".sig"] = *signatureOf(bytes, key.seed);
        server.reply = newVersion + ";101500;https://a.example/p;" + server.address(image);
    }
    [[nodiscard]] QByteArray installedVersion() const
    {
        return contentOf(installed + u"/Contents/bin/QuarrySpotter"_s);
    }
    static QStringList namesIn(const QString& folder)
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    TemporaryHome home;
    QTemporaryDir place; ///< Nothing else is in it than what is installed.
    QString installed = place.filePath(u"QuarrySpotter.app"_s);
    QByteArray newVersion;
    QByteArray image = "/QS-" + newVersion + ".iso";
    SigningKey key = *makeSigningKey();
    ScriptServer server;
};

/// An updater that is about to be told yes.
class InstallRig : public MakerRig {
public:
    InstallRig() : MakerRig("2.0")
    {
        product.version = u"1.0"_s;
        product.bundlePath = installed;
        product.osVersion = 120400;
        product.publicKey = key.publicKey;
        product.needsSignature = true;
        product.scriptUrl = Url::fromStored(QString::fromLatin1(server.address()));
    }

    /// Checks; the user says yes; what happens then is up to the test.
    bool accept()
    {
        updater = std::make_unique<LXUpdater>(
            UpdaterParts{product, clock, events, notifications, defaults, alerts, texts, makeUpdateLoader,
                         [this] { return std::make_unique<FakeUpdaterWindow>(window); }, &parts});
        updater->setProductReference(u"QS1"_s);
        updater->setCanWarnUser(true);
        updater->setInstallationEndedHandler([this](UpdateInstallation::End e) { end = e; });
        updater->checkVersionAsynchronous();
        if (!events.runUntil([this] { return !window.offers.empty(); }))
            return false;
        updater->controllerResult(1);
        return true;
    }
    /// Answers each alert as it comes, until the end.
    bool runToEnd()
    {
        return events.runUntil([this] {
            while (alerts.isShowing())
                alerts.answer(0);
            return end.has_value();
        });
    }

    [[nodiscard]] QString trash() const { return home.path() + u"/.local/share/Trash/files"_s; }
    /// What should not be there any more: beside the bundle, among the downloads, where images are mounted.
    [[nodiscard]] QStringList leftOver() const
    {
        QStringList names = namesIn(place.path());
        names.removeAll(u"QuarrySpotter.app"_s);
        return names + namesIn(parts.downloadsFolder) + namesIn(_mounts.path());
    }

private:
    QTemporaryDir _mounts;

public:
    QString mountFolder = _mounts.filePath(u"QS-2.0"_s);
    ProductInfo product;
    SettableClock clock;
    EagerTimers events;
    LocalNotifications notifications;
    FakeUpdaterDefaults defaults;
    FakeAlerts alerts;
    StringTable texts;
    FakeUpdaterWindow::Notes window;
    NotingWorkspace workspace;
    FailingBundleFiles files;
    bool terminated = false;
    std::optional<UpdateInstallation::End> end;
    InstallationParts parts{
        workspace,
        files,
        [this] { return makeDiskImageTool(installed); },
        [] {
            using std::chrono::milliseconds;
            return makeUpdateDownloader({milliseconds(500), milliseconds(2000), milliseconds(20000), 1 << 24, 3});
        },
        home.path() + u"/Downloads"_s,
        _mounts.path(),
        [this] { terminated = true; },
        {}};
    std::unique_ptr<LXUpdater> updater; ///< Goes first.
};

} // namespace quarry::test
