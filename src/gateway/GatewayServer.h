#pragma once

#include "gateway/SearchSource.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

namespace quarry {

/// Speaks HTTP for a search source: the services' result pages, each document below "/doc/", the redirects that
/// result links go through, and a page with a search field at "/". Reads only; knows GET and HEAD.
class GatewayServer final {
public:
    struct Options {
        QString address = QStringLiteral("127.0.0.1");
        int port = 0; ///< 0 takes any free one.
        /// Has to be set for any address but a loopback one. Without it, requests that name another host than this
        /// machine's loopback are refused: a page of the web may have its own name point here and then read along.
        bool allowRemote = false;
        /// One line a request; called from any thread. May be empty.
        std::function<void(const QByteArray&)> log;
    };

    /// The source has to outlive the server.
    GatewayServer(SearchSource& source, Options options);
    /// Stops.
    ~GatewayServer();

    /// Listens and serves on threads of its own. On failure false, and one line for a person in error.
    [[nodiscard]] bool start(QString* error);
    /// Lets running requests end. Does nothing when it does not run.
    void stop();
    /// "http://ADDRESS:PORT", where it listens.
    [[nodiscard]] QByteArray base() const;
    /// As it stands in an address: an IPv6 one in brackets.
    [[nodiscard]] QByteArray host() const;
    [[nodiscard]] int port() const;

    [[nodiscard]] static bool isLoopback(const QString& address);

private:
    class Implementation;
    std::unique_ptr<Implementation> _implementation;
};

} // namespace quarry
