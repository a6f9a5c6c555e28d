#include "InstallRig.h"
#include "archive/PropertyList.h"
#include "support/QtPrinting.h"
#include "updater/UpdateReply.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Outcome {
    int status = -1;
    QString output;
};

Outcome release(const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(QUARRY_RELEASE), arguments);
    if (!process.waitForFinished())
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

TEST(QuarryRelease, MakesWhatTheUpdaterInstalls)
{
    const QTemporaryDir maker;
    const QString keyFile = maker.filePath(u"key"_s);
    const Outcome made = release({u"key"_s, keyFile});
    ASSERT_EQ(made.status, 0) << made.output.toStdString();
    EXPECT_EQ(QFile::permissions(keyFile) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    EXPECT_NE(release({u"key"_s, keyFile}).status, 0) << "a key is never written over";

    InstallRig rig;
    rig.product.publicKey = QByteArray::fromBase64(made.output.section(u' ', -1).trimmed().toLatin1());
    const QString bundle = maker.filePath(u"QuarrySpotter.app"_s);
    InstallRig::makeBundle(bundle, "2.5");
    const QString server = QString::fromLatin1(rig.server.address("/"));
    const Outcome done = release({u"make"_s, bundle, u"--key"_s, keyFile, u"--output"_s, maker.path(), u"--page"_s,
                                  u"https://a.example/p"_s, u"--url"_s, server, u"--minimum-os"_s, u"101500"_s});
    ASSERT_EQ(done.status, 0) << done.output.toStdString();
    for (const char* name : {"QuarrySpotter-2.5.iso", "QuarrySpotter-2.5.iso.sig"})
        rig.server.files.insert(QByteArray("/") + name, contentOf(maker.filePath(QString::fromUtf8(name))));
    rig.server.reply = contentOf(maker.filePath(u"update-reply.txt"_s));
    // The compressed form is the whole script: a plain file server will do.
    rig.server.answers["/update"] =
        [reply = contentOf(maker.filePath(u"update-reply"_s))](const LoopbackServer::Send& send, LoopbackServer&) {
            send(LoopbackServer::reply(reply));
        };
    EXPECT_EQ(readUpdateReply(rig.server.reply, rig.texts)->curentVersion, u"2.5"_s);
    ASSERT_TRUE(rig.accept());
    ASSERT_TRUE(rig.runToEnd());
    EXPECT_EQ(rig.installedVersion(), "#!/bin/sh\necho 2.5\n");
}

TEST(QuarryRelease, RefusesWhatNoProgramWouldTake)
{
    const QTemporaryDir maker;
    const QString bundle = maker.filePath(u"QuarrySpotter.app"_s);
    InstallRig::makeBundle(bundle, "2.5");
    const auto make = [&](const QString& from, const QString& url, const QStringList& more = {}) {
        return release(QStringList{u"make"_s, from, u"--page"_s, u"https://a.example/p"_s, u"--url"_s, url,
                                   u"--output"_s, maker.path()} +
                       more)
            .status;
    };
    EXPECT_EQ(make(bundle, u"https://a.example/d"_s), 0) << "unsigned, for a bundle without a key";
    EXPECT_NE(make(bundle, u"http://a.example/d"_s), 0);
    EXPECT_NE(make(bundle, u"https://a.example/d;x"_s), 0);
    EXPECT_NE(make(maker.filePath(u"none.app"_s), u"https://a.example/d"_s), 0);
    EXPECT_NE(make(bundle, u"https://a.example/d"_s, {u"--key"_s, maker.filePath(u"none"_s)}), 0);

    // The bundle names a key: neither none nor another one will do.
    const auto keyOf = [&](const char* name) {
        const QString printed = release({u"key"_s, maker.filePath(QString::fromUtf8(name))}).output;
        return printed.section(u' ', -1).trimmed();
    };
    PlistValue::Dictionary info{{u"CFBundleVersion"_s, u"2.5"_s}, {u"QSUpdatePublicKey"_s, keyOf("own")}};
    ASSERT_FALSE(keyOf("other").isEmpty());
    ASSERT_TRUE(writeFile(bundle + u"/Contents/Info.plist"_s, writeXmlPropertyList(info)));
    EXPECT_NE(make(bundle, u"https://a.example/d"_s), 0);
    EXPECT_NE(make(bundle, u"https://a.example/d"_s, {u"--key"_s, maker.filePath(u"other"_s)}), 0);
    EXPECT_EQ(make(bundle, u"https://a.example/d"_s, {u"--key"_s, maker.filePath(u"own"_s)}), 0);
}

TEST(ProductInfo, ComesFromTheBundleAndIsStrictAboutKeys)
{
    const QTemporaryDir place;
    const QString bundle = place.filePath(u"QuarrySpotter.app"_s);
    ASSERT_TRUE(QDir().mkpath(bundle + u"/Contents"_s));
    const QString key = QString::fromLatin1(QByteArray(32, 'k').toBase64());
    const auto read = [&](const PlistValue::Dictionary& info) {
        EXPECT_TRUE(writeFile(bundle + u"/Contents/Info.plist"_s, writeXmlPropertyList(info)));
        return productInfoOfBundle(bundle);
    };
    const PlistValue::Dictionary full{{u"CFBundleVersion"_s, u"1.0"_s},
                                      {u"QSUpdateScriptURL"_s, u"https://a.example/u"_s},
                                      {u"QSUpdatePublicKey"_s, key}};
    EXPECT_EQ(read(full).publicKey, QByteArray(32, 'k'));
    EXPECT_TRUE(read(full).checksForUpdates() && read(full).needsSignature);
    for (const QString& wrong : {key.chopped(4), key + key, u"?"_s, u"no key at all"_s}) {
        PlistValue::Dictionary info = full;
        info.insert(u"QSUpdatePublicKey"_s, wrong);
        EXPECT_TRUE(read(info).publicKey.isEmpty() && read(info).needsSignature) << wrong.toStdString();
    }
    PlistValue::Dictionary packaged = full;
    packaged.insert(u"QSUpdatesComeFromSystem"_s, true);
    EXPECT_FALSE(read(packaged).checksForUpdates());
    EXPECT_FALSE(read({{u"CFBundleVersion"_s, u"1.0"_s}}).checksForUpdates());
    EXPECT_FALSE(productInfoOfBundle(place.filePath(u"none.app"_s)).checksForUpdates());
}

} // namespace
