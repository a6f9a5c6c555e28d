#include "platform/CurlPageLoader.h"

#include "platform/NetworkReach.h"
#include "support/Gzip.h"
#include "support/LoopbackServer.h"

#include <QList>

#include <gtest/gtest.h>

#include <future>

using namespace quarry;
using namespace quarry::test;

namespace {

using Send = LoopbackServer::Send;

QByteArray pathOf(const QByteArray& head)
{
    return head.split(' ').value(1);
}

TEST(CurlPageLoader, LoadsAPageAfterRedirects)
{
    LoopbackServer server([&](const QByteArray& head, const Send& send) {
        if (pathOf(head) == "/start")
            send(LoopbackServer::reply("elsewhere", "302 Found", "Location: /end?x=%20y\r\n"));
        else
            send(LoopbackServer::reply("the page", "200 OK", "Content-Type: text/html; charset=ISO-8859-1\r\n"));
    });
    CurlPageLoader loader;
    const LoadedPage page = loader.load(server.address("/start"));
    ASSERT_TRUE(page.ok()) << page.error.toStdString();
    EXPECT_EQ(page.bytes, "the page");
    EXPECT_EQ(page.contentType, QStringLiteral("text/html; charset=ISO-8859-1"));
    EXPECT_EQ(page.finalAddress, QString::fromLatin1(server.address("/end?x=%20y")));
    EXPECT_EQ(page.httpStatus, 200);
    EXPECT_TRUE(server.requests().front().contains("User-Agent: QuarrySpotter/"));
}

TEST(CurlPageLoader, ABrokenReplyIsAFailureWithAReasonAndNoBytes)
{
    const QByteArray megabyte(1 << 20, 'x');
    const QByteArray most = QByteArray("0123456789abcdef").repeated(1 << 20); // 16 MiB to the byte
    LoopbackServer server([&](const QByteArray& head, const Send& send) {
        const QByteArray path = pathOf(head);
        if (path == "/503")
            send(LoopbackServer::reply("sorry", "503 Service Unavailable"));
        else if (path == "/half")
            send("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nonly this");
        else if (path == "/garbage")
            send(QByteArray("\x01\x02 no protocol at all\r\n\r\n").repeated(50));
        else if (path == "/loop")
            send(LoopbackServer::reply("", "302 Found", "Location: /loop\r\n"));
        else if (path == "/file")
            send(LoopbackServer::reply("", "302 Found", "Location: file:///etc/hostname\r\n"));
        else if (path == "/endless" && send("HTTP/1.1 200 OK\r\n\r\n"))
            while (send(megabyte)) {
            }
        else if (path == "/gigabyte")
            send("HTTP/1.1 200 OK\r\nContent-Length: 1073741824\r\n\r\n");
        else if (path == "/bomb")
            send(LoopbackServer::reply(gzip(QByteArray(20 << 20, '\0')), "200 OK", "Content-Encoding: gzip\r\n"));
        else if (path == "/packed")
            send(LoopbackServer::reply(gzip(most), "200 OK", "Content-Encoding: gzip\r\n"));
        else if (path == "/unpacked")
            send(LoopbackServer::reply(megabyte, "200 OK", "Content-Encoding: gzip\r\n"));
    });
    CurlPageLoader loader;
    for (const char* path :
         {"/503", "/half", "/garbage", "/loop", "/file", "/endless", "/gigabyte", "/bomb", "/unpacked", "/nothing"}) {
        const LoadedPage page = loader.load(server.address(path));
        EXPECT_FALSE(page.ok()) << path;
        EXPECT_TRUE(page.bytes.isEmpty()) << path;
        EXPECT_FALSE(page.error.contains(u'\n')) << path;
    }
    EXPECT_EQ(loader.load(server.address("/packed")).bytes, most) << "unpacked up to the limit";
    EXPECT_EQ(loader.load(server.address("/503")).error, QStringLiteral("HTTP status 503"));
    EXPECT_EQ(loader.load(server.address("/503")).httpStatus, 503);
    const auto requests = server.requests();
    EXPECT_EQ(std::count_if(requests.begin(), requests.end(), [](const auto& head) { return pathOf(head) == "/loop"; }),
              11)
        << "the first and ten redirects";
    for (const char* address : {"file:///etc/hostname", "ftp://127.0.0.1/", "", "http://", "nonsense:"})
        EXPECT_FALSE(loader.load(address).ok()) << address;
}

TEST(CurlPageLoader, OfARefusalTheBeginningIsKeptWhereThatIsWanted)
{
    LoopbackServer server([&](const QByteArray& head, const Send& send) {
        if (pathOf(head) == "/short") {
            send(LoopbackServer::reply("who are you?", "403 Forbidden"));
            return;
        }
        send("HTTP/1.1 503 Busy\r\nContent-Length: 2097152\r\n\r\n" + QByteArray(1 << 20, 'x'));
        server.waitForClient();
    });
    CurlPageLoader::Limits limits;
    limits.errorBytes = 1000;
    CurlPageLoader loader(limits);
    const LoadedPage refused = loader.load(server.address("/short"));
    EXPECT_EQ(refused.error, QStringLiteral("HTTP status 403"));
    EXPECT_EQ(refused.errorBody, "who are you?");
    EXPECT_TRUE(refused.bytes.isEmpty());
    const LoadedPage busy = loader.load(server.address("/long"));
    EXPECT_EQ(busy.error, QStringLiteral("HTTP status 503"));
    EXPECT_EQ(busy.errorBody, QByteArray(1000, 'x'));
    EXPECT_TRUE(CurlPageLoader().load(server.address("/short")).errorBody.isEmpty());
}

TEST(CurlPageLoader, AHostThatFallsSilentIsGivenUp)
{
    LoopbackServer server([&](const QByteArray& head, const Send& send) {
        if (pathOf(head) == "/stall")
            send("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nsome");
        server.waitForClient();
    });
    CurlPageLoader::Limits limits;
    limits.withoutData = std::chrono::milliseconds(50);
    CurlPageLoader loader(limits);
    for (const char* path : {"/hang", "/stall"})
        EXPECT_EQ(loader.load(server.address(path)).error, QStringLiteral("no data for 0.05 seconds")) << path;
}

TEST(CurlPageLoader, StopEndsRunningAndLaterLoads)
{
    std::promise<void> asked;
    LoopbackServer server([&](const QByteArray&, const Send&) {
        asked.set_value();
        server.waitForClient();
    });
    CurlPageLoader loader;
    auto page = std::async(std::launch::async, [&] { return loader.load(server.address()); });
    asked.get_future().wait();
    loader.stop();
    EXPECT_EQ(page.get().error, QStringLiteral("stopped"));
    EXPECT_EQ(loader.load(server.address()).error, QStringLiteral("stopped"));
}

TEST(CurlPageLoader, TheMachineItselfIsReachedWithoutAProxy)
{
    LoopbackServer server([](const QByteArray&, const Send& send) { send(LoopbackServer::reply("direct")); });
    qputenv("http_proxy", "http://127.0.0.1:1"); // Nobody listens there.
    qputenv("no_proxy", "example.org");
    CurlPageLoader loader;
    EXPECT_EQ(loader.load(server.address()).bytes, "direct");
    qunsetenv("http_proxy");
    qunsetenv("no_proxy");
}

TEST(CurlPageLoader, ConnectsOnlyWhereItMay)
{
    LoopbackServer server([](const QByteArray& head, const Send& send) {
        if (pathOf(head) == "/away")
            send(LoopbackServer::reply("", "302 Found", "Location: http://127.0.0.2:1/\r\n"));
        else
            send(LoopbackServer::reply("the page"));
    });
    const QString refusal = QStringLiteral("the address may not be connected to");
    CurlPageLoader publicOnly(CurlPageLoader::Limits(), [](const QByteArray& ip) { return !isPrivateAddress(ip); });
    const QByteArray port = QByteArray::number(server.port());
    for (const char* host : {"127.0.0.1", "localhost", "0.0.0.0", "[::1]", "[::ffff:127.0.0.1]", "127.1"})
        EXPECT_EQ(publicOnly.load(QByteArray("http://") + host + ":" + port + "/").error, refusal) << host;
    EXPECT_TRUE(server.requests().empty());

    CurlPageLoader oneHost(CurlPageLoader::Limits(), [](const QByteArray& ip) { return ip == "127.0.0.1"; });
    EXPECT_EQ(oneHost.load(server.address()).bytes, "the page");
    EXPECT_EQ(oneHost.load(server.address("/away")).error, refusal);
    EXPECT_EQ(server.requests().size(), 2U);
}

TEST(CurlPageLoader, ARuleHoldsForConnectionsThatAreOpenAlready)
{
    LoopbackServer server([&](const QByteArray&, const Send& send) {
        send("HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\nthe page");
        server.waitForClient();
    });
    CurlPageLoader anywhere;
    CurlPageLoader::Limits limits;
    limits.withoutData = std::chrono::seconds(1);
    CurlPageLoader nowhere(limits, [](const QByteArray&) { return false; });
    EXPECT_EQ(anywhere.load(server.address()).bytes, "the page");
    EXPECT_EQ(nowhere.load(server.address()).error, QStringLiteral("the address may not be connected to"));
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST(NetworkReach, TellsPublicAddressesFromOthers)
{
    for (const char* ip : {"127.0.0.1",       "10.255.0.1",      "172.16.0.1",    "172.31.255.255",
                           "192.168.1.1",     "169.254.169.254", "100.64.0.1",    "0.0.0.0",
                           "224.0.0.1",       "255.255.255.255", "::1",           "::",
                           "fd00::1",         "fe80::1",         "fe80::1%eth0",  "ff02::1",
                           "::ffff:10.0.0.1", "64:ff9b::7f00:1", "2002:7f00:1::", "nonsense"})
        EXPECT_TRUE(isPrivateAddress(ip)) << ip;
    for (const char* ip : {"8.8.8.8", "172.15.0.1", "172.32.0.1", "100.128.0.1", "192.167.1.1", "223.255.255.255",
                           "2606:4700::1111", "::ffff:8.8.8.8", "64:ff9b::808:808", "2002:808:808::"})
        EXPECT_FALSE(isPrivateAddress(ip)) << ip;
    for (const char* host : {"localhost", "127.0.0.1", "[::1]", "192.168.0.9"})
        EXPECT_TRUE(isPrivateHost(QString::fromLatin1(host))) << host;
    for (const char* host : {"8.8.8.8", "no.such.host.invalid"})
        EXPECT_FALSE(isPrivateHost(QString::fromLatin1(host))) << host;
}

} // namespace
