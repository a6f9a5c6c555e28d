#include "support/FakePageLoader.h"
#include "support/LoopbackServer.h"
#include "support/QtPrinting.h"
#include "support/TemporaryHome.h"
#include "text/Data.h"
#include "updater/DownloadPlace.h"
#include "updater/RequestCoding.h"
#include "updater/TrustedAddress.h"
#include "updater/UpdateDownloader.h"
#include "updater/UpdateReply.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quarry;
using quarry::test::FakePageLoader;
using quarry::test::LoopbackServer;
using namespace Qt::Literals::StringLiterals;

namespace {

Url url(const char* text)
{
    return Url::fromStored(QString::fromUtf8(text));
}

TEST(RequestCoding, WritesAndReadsHexadecimalDigits)
{
    EXPECT_EQ(RequestCoding::asciiToHexa(u"100604|1.2.5|QS1|LOG"_s), u"3130303630347c312e322e357c5153317c4c4f47"_s);
    EXPECT_EQ(RequestCoding::asciiToHexa(u"é"_s), u"ffffffc3ffffffa9"_s) << "a byte above 0x7F, sign-extended";
    EXPECT_EQ(RequestCoding::asciiToHexa(QString()), u"ERROR"_s);
    EXPECT_EQ(RequestCoding::asciiToHexa(u""_s), u""_s);
    EXPECT_EQ(RequestCoding::hexaToAscii(RequestCoding::asciiToHexa(u"100604|1.2.5|QS1|LOG"_s)),
              u"100604|1.2.5|QS1|LOG"_s);
    EXPECT_EQ(RequestCoding::hexaToAscii(u" 4a4B."_s), u"JK"_s) << "low characters at the ends are left out";
    EXPECT_EQ(RequestCoding::hexaToAscii(u"G1"_s), u"\x01"_s) << "a first character that is no digit counts as 0";
    EXPECT_EQ(RequestCoding::hexaToAscii(u"4G"_s), u"@"_s) << "a second one is ignored";
    EXPECT_EQ(RequestCoding::hexaToAscii(u"4"_s), u""_s);
    EXPECT_EQ(RequestCoding::hexaToAscii(u"C3A9"_s), u"é"_s);
    EXPECT_EQ(RequestCoding::hexaToAscii(u"41E9"_s), QString::fromLatin1("A\xe9")) << "no UTF-8";
}

TEST(UpdateReply, IsAskedForAgainInPlainTextWhenItDoesNotInflate)
{
    const QByteArray text("1.2.6;101500;https://a.example/;https://a.example/q.iso");
    const QByteArray address("http://127.0.0.1/u?61");
    const QByteArray clear = address + "2626636c656172";
    struct Case {
        const char* name;
        LoadedPage first;
        LoadedPage second;
        std::optional<QByteArray> reply;
        std::size_t requests;
    };
    const auto page = [](const QByteArray& bytes) { return FakePageLoader::page(bytes); };
    const LoadedPage failure = FakePageLoader::failure(u"no data for 20 seconds"_s);
    const Case cases[] = {
        {"compressed", page(*compressedData(text)), failure, text, 1},
        {"plain", page(text), page(text), text, 2},
        {"plain, then nothing", page(text), failure, std::nullopt, 2},
        {"nothing", failure, page(text), std::nullopt, 1},
        {"empty", page({}), page(text), QByteArray(""), 1},
        {"a bomb", page(*compressedData(QByteArray(1 << 20, 'x'))), page(text), std::nullopt, 1},
        {"plain and large", page(text), page(QByteArray(1 << 20, 'x')), std::nullopt, 2},
    };
    for (const Case& c : cases) {
        FakePageLoader loader([&](const QByteArray& asked) { return asked == clear ? c.second : c.first; });
        EXPECT_EQ(fetchUpdateReply(loader, Url::fromStored(QString::fromLatin1(address))), c.reply) << c.name;
        EXPECT_EQ(loader.requests().size(), c.requests) << c.name;
        EXPECT_EQ(loader.requests().front(), address) << c.name;
    }
}

TEST(UpdateReply, NeedsFourFieldsUnlessTheTextsNameBothAddresses)
{
    const StringTable none;
    const auto infos = readUpdateReply(" 1.2.6 ;101500;https://a.example/p;https://a.example/q.iso\n", none);
    ASSERT_TRUE(infos);
    EXPECT_EQ(*infos,
              (UpdateInfos{u"1.2.6"_s, u"101500"_s, url("https://a.example/p"), url("https://a.example/q.iso")}));
    for (const char* reply :
         {"", ";", "1.2.6;101500;https://a.example/p", "1.2.6;;https://a.example/p;https://a.example/q.iso",
          "<html>;<body>;https://a.example/p;https://a.example/q.iso", "1.2.6;101500;;", "404 not found;1;a;b",
          "1.2.6\xff;101500;https://a.example/p;https://a.example/q.iso"})
        EXPECT_FALSE(readUpdateReply(reply, none)) << reply;

    const QTemporaryDir resources;
    ASSERT_TRUE(QDir(resources.path()).mkpath(u"English.lproj"_s));
    ASSERT_TRUE(test::writeFile(resources.filePath(u"English.lproj/Updater.strings"_s),
                                "<plist version=\"1.0\"><dict><key>Updater_1.0_International product URL</key>"
                                "<string>https://en.example/p</string><key>Updater_1.0_International dmg URL</key>"
                                "<string>https://en.example/q.iso</string></dict></plist>"));
    const StringTable own(resources.path(), {u"en"_s}, u"Updater"_s);
    const auto local = readUpdateReply("1.2.6;101500", own);
    ASSERT_TRUE(local);
    EXPECT_EQ(local->productDownloadUrl, url("https://en.example/p"));
    EXPECT_EQ(readUpdateReply("1.2.6;101500;https://a.example/p;https://a.example/q.iso", own)->fileUrl,
              url("https://en.example/q.iso"));
}

TEST(TrustedAddress, IsHttpsOrThisMachine)
{
    for (const char* address : {"https://updates.example/u", "HTTPS://updates.example/u", "http://127.0.0.1:8080/u",
                                "http://127.1.2.3/u", "http://localhost/u", "http://[::1]:80/u"})
        EXPECT_TRUE(isTrustedUpdateAddress(url(address))) << address;
    for (const char* address : {"", "http://updates.example/u", "http://127.0.0.1.example/u", "http://127.0.0.999/u",
                                "http://127.1/u", "http://localhost.example/u", "http://10.0.0.1/u",
                                "http://u@example/127.0.0.1", "file:///etc/passwd", "ftp://127.0.0.1/u", "https:///u"})
        EXPECT_FALSE(isTrustedUpdateAddress(url(address))) << address;
}

TEST(TrustedAddress, IsHeldToByTheLoadersThemselves)
{
    LoopbackServer server([](const QByteArray& head, const LoopbackServer::Send& send) {
        send(head.startsWith("GET /away") ? LoopbackServer::reply("", "302 Found", "Location: http://192.0.2.1/u\r\n")
                                          : LoopbackServer::reply("here"));
    });
    CurlPageLoader::Limits limits;
    limits.secureOnly = true;
    EXPECT_FALSE(CurlPageLoader(limits).load(server.address()).ok());
    const auto loader = makeUpdateLoader();
    EXPECT_EQ(loader->load("http://192.0.2.1/u").error, u"the address is not HTTPS"_s);
    EXPECT_TRUE(server.requests().empty());
    EXPECT_EQ(loader->load(server.address()).bytes, "here");
    EXPECT_EQ(loader->load(server.address("/away")).error, u"the address may not be connected to"_s);
}

TEST(DownloadPlace, IsAPlainNameWhateverTheAddressSays)
{
    EXPECT_EQ(downloadFileName(url("https://a.example/x/QuarrySpotter%202.0.iso?x=/y")), u"QuarrySpotter 2.0.iso"_s);
    EXPECT_EQ(mountFolderName(u"/home/u/Downloads/QuarrySpotter-2.0.iso"_s), u"QuarrySpotter-2.0"_s);
    for (const char* address :
         {"https://a.example", "https://a.example/x/", "https://a.example/..", "https://a.example/x%2F..%2Fy",
          "https://a.example/.bashrc", "https://a.example/a%00b", "https://a.example/a%0Ab", "https://a.example/%ff"})
        EXPECT_EQ(downloadFileName(url(address)), u"QuarrySpotter-update.iso"_s) << address;
}

} // namespace
