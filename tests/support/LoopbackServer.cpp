#include "support/LoopbackServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace quarry::test {

namespace {

thread_local int servedSocket = -1;

/// Waits until the descriptor is ready or the server ends; false when it ends.
bool waitFor(int descriptor, short events, int wake)
{
    pollfd watched[2] = {{descriptor, events, 0}, {wake, POLLIN, 0}};
    while (::poll(watched, 2, -1) < 0 && errno == EINTR) {
    }
    return watched[1].revents == 0;
}

bool sendAll(int socket, const QByteArray& bytes, int wake)
{
    for (qsizetype sent = 0; sent < bytes.size();) {
        if (!waitFor(socket, POLLOUT, wake))
            return false;
        const ssize_t step = ::send(socket, bytes.constData() + sent, static_cast<std::size_t>(bytes.size() - sent),
                                    MSG_NOSIGNAL | MSG_DONTWAIT);
        if (step < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        sent += std::max<ssize_t>(step, 0);
    }
    return true;
}

} // namespace

LoopbackServer::LoopbackServer(Handler handler) : _handler(std::move(handler))
{
    _listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const general = reinterpret_cast<sockaddr*>(&address);
    if (::bind(_listener, general, length) != 0 || ::listen(_listener, 64) != 0 ||
        ::getsockname(_listener, general, &length) != 0 || ::pipe2(_wake, O_CLOEXEC) != 0)
        throw std::runtime_error("no loopback server");
    _port = ntohs(address.sin_port);
    _acceptor = std::thread([this] { acceptLoop(); });
}

LoopbackServer::~LoopbackServer()
{
    ::close(_wake[1]); // Every poll sees the end of the pipe.
    _acceptor.join();
    for (std::thread& server : _servers)
        server.join();
    ::close(_wake[0]);
    ::close(_listener);
}

QByteArray LoopbackServer::address(const QByteArray& path) const
{
    return "http://127.0.0.1:" + QByteArray::number(_port) + path;
}

void LoopbackServer::waitForClient()
{
    waitFor(servedSocket, POLLRDHUP, _wake[0]);
}

std::vector<QByteArray> LoopbackServer::requests() const
{
    const std::lock_guard lock(_mutex);
    return _requests;
}

QByteArray LoopbackServer::reply(const QByteArray& body, const QByteArray& status, const QByteArray& headers)
{
    return "HTTP/1.1 " + status + "\r\nConnection: close\r\n" + headers +
           "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

void LoopbackServer::acceptLoop()
{
    while (waitFor(_listener, POLLIN, _wake[0])) {
        const int socket = ::accept4(_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            continue;
        const std::lock_guard lock(_mutex);
        _servers.emplace_back([this, socket] { serve(socket); });
    }
}

void LoopbackServer::serve(int socket)
{
    servedSocket = socket;
    QByteArray head;
    char buffer[4096];
    while (!head.contains("\r\n\r\n") && waitFor(socket, POLLIN, _wake[0])) {
        const ssize_t got = ::recv(socket, buffer, sizeof buffer, 0);
        if (got <= 0)
            break;
        head.append(buffer, got);
    }
    if (head.contains("\r\n\r\n")) {
        {
            const std::lock_guard lock(_mutex);
            _requests.push_back(head);
        }
        _handler(head, [this, socket](const QByteArray& bytes) { return sendAll(socket, bytes, _wake[0]); });
    }
    ::shutdown(socket, SHUT_WR);
    // Closing with unread bytes would reset the connection and could take the reply with it.
    while (waitFor(socket, POLLIN, _wake[0]) && ::recv(socket, buffer, sizeof buffer, 0) > 0) {
    }
    ::close(socket);
}

} // namespace quarry::test
