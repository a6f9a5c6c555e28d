#include "InstallRig.h"
#include "archive/PropertyList.h"
#include "support/QtPrinting.h"
#include "updater/UpdateReply.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;

namespace {

QString str(const char* text)
{
    return QString::fromUtf8(text);
}

struct Outcome {
    int status = -1;
    QString output;
};

Outcome release(const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(str(QUARRY_RELEASE), arguments);
    if (!process.waitForFinished())
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

TEST(QuarryRelease, MakesWhatTheUpdaterInstalls)
{
    const QTemporaryDir maker;
    const QString keyFile = maker.filePath(str("key"));
    const Outcome made = release({str("key"), keyFile});
    ASSERT_EQ(made.status, 0) << made.output.toStdString();
    EXPECT_EQ(QFile::permissions(keyFile) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    EXPECT_NE(release({str("key"), keyFile}).status, 0) << "a key is never written over";

    InstallRig rig;
    rig.product.publicKey = QByteArray::fromBase64(made.output.section(u' ', -1).trimmed().toLatin1());
    const QString bundle = maker.filePath(str("QuarrySpotter.app"));
    InstallRig::makeBundle(bundle, "2.5");
    const QString server = QString::fromLatin1(rig.server.address("/"));
    const Outcome done =
        release({str("make"), bundle, str("--key"), keyFile, str("--output"), maker.path(), str("--page"),
                 str("https://a.example/p"), str("--url"), server, str("--minimum-os"), str("101500")});
    ASSERT_EQ(done.status, 0) << done.output.toStdString();
    for (const char* name : {"QuarrySpotter-2.5.iso", "QuarrySpotter-2.5.iso.sig"})
        rig.server.files.insert(QByteArray("/") + name, contentOf(maker.filePath(str(name))));
    rig.server.reply = contentOf(maker.filePath(str("update-reply.txt")));
    // The compressed form is the whole script: a plain file server will do.
    rig.server.answers["/update"] =
        [reply = contentOf(maker.filePath(str("update-reply")))](const LoopbackServer::Send& send, LoopbackServer&) {
            send(LoopbackServer::reply(reply));
        };
    EXPECT_EQ(readUpdateReply(rig.server.reply, rig.texts)->curentVersion, str("2.5"));
    ASSERT_TRUE(rig.accept());
    ASSERT_TRUE(rig.runToEnd());
    EXPECT_EQ(rig.installedVersion(), "#!/bin/sh\necho 2.5\n");
}

TEST(QuarryRelease, RefusesWhatNoProgramWouldTake)
{
    const QTemporaryDir maker;
    const QString bundle = maker.filePath(str("QuarrySpotter.app"));
    InstallRig::makeBundle(bundle, "2.5");
    const auto make = [&](const QString& from, const QString& url, const QStringList& more = {}) {
        return release(QStringList{str("make"), from, str("--page"), str("https://a.example/p"), str("--url"), url,
                                   str("--output"), maker.path()} +
                       more)
            .status;
    };
    EXPECT_EQ(make(bundle, str("https://a.example/d")), 0) << "unsigned, for a bundle without a key";
    EXPECT_NE(make(bundle, str("http://a.example/d")), 0);
    EXPECT_NE(make(bundle, str("https://a.example/d;x")), 0);
    EXPECT_NE(make(maker.filePath(str("none.app")), str("https://a.example/d")), 0);
    EXPECT_NE(make(bundle, str("https://a.example/d"), {str("--key"), maker.filePath(str("none"))}), 0);

    // The bundle names a key: neither none nor another one will do.
    const auto keyOf = [&](const char* name) {
        const QString printed = release({str("key"), maker.filePath(str(name))}).output;
        return printed.section(u' ', -1).trimmed();
    };
    PlistValue::Dictionary info{{str("CFBundleVersion"), str("2.5")}, {str("QSUpdatePublicKey"), keyOf("own")}};
    ASSERT_FALSE(keyOf("other").isEmpty());
    ASSERT_TRUE(writeFile(bundle + str("/Contents/Info.plist"), writeXmlPropertyList(info)));
    EXPECT_NE(make(bundle, str("https://a.example/d")), 0);
    EXPECT_NE(make(bundle, str("https://a.example/d"), {str("--key"), maker.filePath(str("other"))}), 0);
    EXPECT_EQ(make(bundle, str("https://a.example/d"), {str("--key"), maker.filePath(str("own"))}), 0);
}

TEST(ProductInfo, ComesFromTheBundleAndIsStrictAboutKeys)
{
    const QTemporaryDir place;
    const QString bundle = place.filePath(str("QuarrySpotter.app"));
    ASSERT_TRUE(QDir().mkpath(bundle + str("/Contents")));
    const QString key = QString::fromLatin1(QByteArray(32, 'k').toBase64());
    const auto read = [&](const PlistValue::Dictionary& info) {
        EXPECT_TRUE(writeFile(bundle + str("/Contents/Info.plist"), writeXmlPropertyList(info)));
        return productInfoOfBundle(bundle);
    };
    const PlistValue::Dictionary full{{str("CFBundleVersion"), str("1.0")},
                                      {str("QSUpdateScriptURL"), str("https://a.example/u")},
                                      {str("QSUpdatePublicKey"), key}};
    EXPECT_EQ(read(full).publicKey, QByteArray(32, 'k'));
    EXPECT_TRUE(read(full).checksForUpdates() && read(full).needsSignature);
    for (const QString& wrong : {key.chopped(4), key + key, str("?"), str("no key at all")}) {
        PlistValue::Dictionary info = full;
        info.insert(str("QSUpdatePublicKey"), wrong);
        EXPECT_TRUE(read(info).publicKey.isEmpty() && read(info).needsSignature) << wrong.toStdString();
    }
    PlistValue::Dictionary packaged = full;
    packaged.insert(str("QSUpdatesComeFromSystem"), true);
    EXPECT_FALSE(read(packaged).checksForUpdates());
    EXPECT_FALSE(read({{str("CFBundleVersion"), str("1.0")}}).checksForUpdates());
    EXPECT_FALSE(productInfoOfBundle(place.filePath(str("none.app"))).checksForUpdates());
}

} // namespace
