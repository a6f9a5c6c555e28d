#include "platform/CurlPageLoader.h"

#include "support/LoopbackServer.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <future>

using namespace quarry;
using namespace quarry::test;

namespace {

using Send = LoopbackServer::Send;

QByteArray pathOf(const QByteArray& head)
{
    return head.split(' ').value(1);
}

QByteArray gzip(const QByteArray& bytes)
{
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 9, Z_DEFAULT_STRATEGY), Z_OK);
    QByteArray packed(static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(bytes.size()))), '\0');
    QByteArray input = bytes;
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.truncate(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return packed;
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
    EXPECT_EQ(loader.load(server.address("/503")).error, QStringLiteral("HTTP status 503"));
    EXPECT_EQ(loader.load(server.address("/503")).httpStatus, 503);
    const auto requests = server.requests();
    EXPECT_EQ(std::count_if(requests.begin(), requests.end(), [](const auto& head) { return pathOf(head) == "/loop"; }),
              11)
        << "the first and ten redirects";
    for (const char* address : {"file:///etc/hostname", "ftp://127.0.0.1/", "", "http://", "nonsense:"})
        EXPECT_FALSE(loader.load(address).ok()) << address;
}

TEST(CurlPageLoader, CompressedPagesComeUnpackedUpToTheLimit)
{
    const QByteArray body = QByteArray("0123456789abcdef").repeated(1 << 20); // 16 MiB to the byte
    LoopbackServer server([packed = gzip(body)](const QByteArray&, const Send& send) {
        send(LoopbackServer::reply(packed, "200 OK", "Content-Encoding: gzip\r\n"));
    });
    CurlPageLoader loader;
    EXPECT_EQ(loader.load(server.address()).bytes, body);
}

TEST(CurlPageLoader, AHostThatFallsSilentIsGivenUp)
{
    LoopbackServer* running = nullptr;
    LoopbackServer server([&](const QByteArray& head, const Send& send) {
        if (pathOf(head) == "/stall")
            send("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nsome");
        running->waitForClient();
    });
    running = &server;
    CurlPageLoader::Limits limits;
    limits.withoutData = std::chrono::milliseconds(50);
    CurlPageLoader loader(limits);
    for (const char* path : {"/hang", "/stall"})
        EXPECT_EQ(loader.load(server.address(path)).error, QStringLiteral("no data for 0.05 seconds")) << path;
}

TEST(CurlPageLoader, StopEndsRunningAndLaterLoads)
{
    std::promise<void> asked;
    LoopbackServer* running = nullptr;
    LoopbackServer server([&](const QByteArray&, const Send&) {
        asked.set_value();
        running->waitForClient();
    });
    running = &server;
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

} // namespace
