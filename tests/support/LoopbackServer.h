#pragma once

#include <QByteArray>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quarry::test {

/// A server on a loopback port of its own that sends exactly the bytes it is told to, so that it can break every
/// rule of the protocol. Each connection is answered on a thread of its own and then closed.
class LoopbackServer final {
public:
    /// Writes bytes to the client; false once it is gone or the server ends.
    using Send = std::function<bool(const QByteArray& bytes)>;
    /// Answers one request, given its head ("GET /path HTTP/1.1..."). Returning closes the connection.
    using Handler = std::function<void(const QByteArray& head, const Send& send)>;

    explicit LoopbackServer(Handler handler);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// "http://127.0.0.1:PORT" + path.
    [[nodiscard]] QByteArray address(const QByteArray& path = "/") const;
    [[nodiscard]] int port() const { return _port; }
    /// Returns when the client went away or the server ends: a handler that keeps its client waiting calls this.
    /// Only from within a handler's thread.
    void waitForClient();
    /// The heads of all requests so far.
    [[nodiscard]] std::vector<QByteArray> requests() const;

    /// A whole reply with these header lines ("Name: value\r\n" each) and this body, its length told.
    static QByteArray reply(const QByteArray& body, const QByteArray& status = "200 OK",
                            const QByteArray& headers = "Content-Type: text/html\r\n");

private:
    void acceptLoop();
    void serve(int socket);

    Handler _handler;
    int _listener = -1;
    int _wake[2] = {-1, -1};
    int _port = 0;
    std::thread _acceptor;
    mutable std::mutex _mutex;
    std::vector<std::thread> _servers;
    std::vector<QByteArray> _requests;
};

} // namespace quarry::test
