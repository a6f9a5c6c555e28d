#include "gateway/GatewayServer.h"

#include "gateway/Host.h"
#include "gateway/Markup.h"
#include "gateway/ResultPage.h"

#include <QStringList>

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

namespace quarry {

namespace {

constexpr std::size_t threads = 16;
constexpr int statusFound = 302;
constexpr int statusNotFound = 404;
constexpr int statusMethodNotAllowed = 405;
constexpr int statusMisdirected = 421;
constexpr int statusUnavailable = 503;

void answerHtml(httplib::Response& response, const QByteArray& html, int status = 200)
{
    response.status = status;
    response.set_content(html.toStdString(), "text/html; charset=utf-8");
}

void answerError(httplib::Response& response, int status, const char* text)
{
    answerHtml(response,
               QByteArray("<!DOCTYPE html>\n<html><head><title>") + text + "</title></head><body><p>" + text +
                   "</p></body></html>\n",
               status);
}

/// Neither scripts nor anything from elsewhere: a document is somebody else's text.
constexpr const char* documentPolicy = "default-src 'none'; style-src 'unsafe-inline'; img-src data:; sandbox";
constexpr const char* pagePolicy = "default-src 'none'; form-action 'self'";

} // namespace

class GatewayServer::Implementation {
public:
    Implementation(SearchSource& source, Options options) : _source(source), _options(std::move(options)) { prepare(); }

    bool start(QString* error);
    void stop();
    QByteArray base() const { return "http://" + host() + ':' + QByteArray::number(_port); }
    QByteArray host() const;
    int port() const { return _port; }

private:
    void prepare();
    void answer(const httplib::Request& request, httplib::Response& response);
    void answerSearch(const httplib::Request& request, const ServiceRequest& asked, httplib::Response& response);
    void answerDocument(const std::string& target, httplib::Response& response);
    void answerRedirect(const httplib::Request& request, const char* parameter, httplib::Response& response);
    void answerStart(httplib::Response& response);

    bool mayAnswer(const httplib::Request& request) const;
    QByteArray baseFor(const httplib::Request& request) const;
    QByteArray ownHost(const httplib::Request& request) const;

    SearchSource& _source;
    const Options _options;
    httplib::Server _server;
    std::thread _thread;
    std::atomic<bool> _ended = false;
    int _port = 0;
};

void GatewayServer::Implementation::prepare()
{
    // By default the library lets several programs share a port; a port in use has to be told.
    _server.set_socket_options([](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    // A kept connection keeps one of few threads, also from those who wait, and keeps the server from stopping.
    _server.set_keep_alive_max_count(1);
    _server.set_keep_alive_timeout(1);
    _server.new_task_queue = [] { return std::make_unique<httplib::ThreadPool>(threads).release(); };
    _server.set_payload_max_length(0);
    _server.set_tcp_nodelay(true);
    // Everything is answered here: the library's own routes are regular expressions over text from outside.
    _server.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        answer(request, response);
        return httplib::Server::HandlerResponse::Handled;
    });
    if (_options.log) {
        _server.set_logger([this](const httplib::Request& request, const httplib::Response& response) {
            // Escapes as they came; but nothing that would move a terminal's cursor.
            QByteArray line = QByteArray::fromStdString(request.method + ' ' + request.target) + ' ' +
                              QByteArray::number(response.status);
            std::replace_if(
                line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
            _options.log(line);
        });
    }
}

bool GatewayServer::Implementation::start(QString* error)
{
    if (!_options.allowRemote && !isLoopback(_options.address)) {
        *error =
            QStringLiteral("\"%1\" can be reached from other machines, and that was not allowed").arg(_options.address);
        return false;
    }
    const std::string address = _options.address.toStdString();
    errno = 0;
    if (_options.port == 0)
        _port = _server.bind_to_any_port(address);
    else
        _port = _server.bind_to_port(address, _options.port) ? _options.port : -1;
    if (_port <= 0) {
        const int code = errno;
        *error = QStringLiteral("cannot listen on %1, port %2: %3")
                     .arg(_options.address)
                     .arg(_options.port)
                     .arg(code == EADDRINUSE ? QStringLiteral("the port is in use")
                          : code == 0        ? QStringLiteral("no such address")
                                             : QString::fromStdString(std::generic_category().message(code)));
        return false;
    }
    _thread = std::thread([this] {
        _server.listen_after_bind();
        _ended = true;
    });
    // A stop that comes before the library has begun would be lost.
    while (!_server.is_running() && !_ended)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return true;
}

void GatewayServer::Implementation::stop()
{
    _server.stop();
    if (_thread.joinable())
        _thread.join();
}

void GatewayServer::Implementation::answer(const httplib::Request& request, httplib::Response& response)
{
    response.set_header("X-Content-Type-Options", "nosniff");
    response.set_header("Referrer-Policy", "no-referrer");
    response.set_header("Content-Security-Policy", pagePolicy);
    if (request.method != "GET" && request.method != "HEAD") {
        response.set_header("Allow", "GET, HEAD");
        return answerError(response, statusMethodNotAllowed, "Only reading is possible here.");
    }
    if (!mayAnswer(request))
        return answerError(response, statusMisdirected, "This gateway serves its own machine only.");
    const std::string path = request.target.substr(0, request.target.find('?'));
    if (const auto asked = ServiceRequest::fromRequest(path, request.params))
        return answerSearch(request, *asked, response);
    if (path.rfind("/doc/", 0) == 0)
        return answerDocument(path, response);
    if (path == googleRedirect)
        return answerRedirect(request, "q", response);
    if (path == yahooRedirect)
        return answerRedirect(request, "u", response);
    if (path == "/")
        return answerStart(response);
    answerError(response, statusNotFound, "There is no such page.");
}

void GatewayServer::Implementation::answerSearch(const httplib::Request& request, const ServiceRequest& asked,
                                                 httplib::Response& response)
{
    SearchRequest search;
    search.text = SearchText::fromText(asked.text);
    search.ranking = rankingOf(asked.service);
    search.first = asked.first;
    search.count = resultsPerPage;
    for (const QString& site : search.text.sites + QStringList(asked.site)) {
        const QByteArray place = placeOf(site, ownHost(request));
        if (!place.isEmpty())
            search.places += place;
    }
    ResultPage page{asked, _source.search(search), baseFor(request)};
    if (!page.answer.error.isEmpty()) {
        if (_options.log)
            _options.log(page.answer.error.toUtf8());
        return answerError(response, statusUnavailable, "The index cannot be searched at the moment.");
    }
    answerHtml(response, page.html());
}

void GatewayServer::Implementation::answerDocument(const std::string& target, httplib::Response& response)
{
    const QByteArray path = unescapedPath(QByteArray::fromStdString(target).mid(5));
    const std::optional<DocumentPage> page = _source.document(path);
    if (!page)
        return answerError(response, statusNotFound, "There is no such document.");
    response.headers.erase("Content-Security-Policy");
    response.set_header("Content-Security-Policy", documentPolicy);
    answerHtml(response, page->html);
}

/// Only to documents of this gateway: a redirect to anywhere would lend its name to whoever asks.
void GatewayServer::Implementation::answerRedirect(const httplib::Request& request, const char* parameter,
                                                   httplib::Response& response)
{
    const QByteArray target = QByteArray::fromStdString(request.get_param_value(parameter));
    const QByteArray own = baseFor(request) + "/doc/";
    if (!target.startsWith(own))
        return answerError(response, statusNotFound, "There is no such document.");
    response.status = statusFound;
    response.set_header("Location", ("/doc/" + escapedPath(unescapedPath(target.mid(own.size())))).toStdString());
}

void GatewayServer::Implementation::answerStart(httplib::Response& response)
{
    answerHtml(
        response,
        "<!DOCTYPE html>\n<html><head><title>Document search</title></head><body>\n"
        "<form action=\"/search\"><input name=\"q\" autofocus> <input type=\"submit\" value=\"Search\"></form>\n<p>" +
            QByteArray::number(_source.documentCount()) + " documents</p></body></html>\n");
}

QByteArray GatewayServer::Implementation::host() const
{
    const QByteArray address = _options.address.toUtf8();
    return address.contains(':') ? '[' + address + ']' : address;
}

bool GatewayServer::Implementation::mayAnswer(const httplib::Request& request) const
{
    const std::string host = request.get_header_value("Host");
    return _options.allowRemote || host.empty() || isLoopbackHost(hostOf(QByteArray::fromStdString(host)));
}

/// Links lead back to where the request came in. Locally that is always the same address, so that one document has
/// one address; an address that stands for all of a machine's is no address to link to.
QByteArray GatewayServer::Implementation::baseFor(const httplib::Request& request) const
{
    const QByteArray host = QByteArray::fromStdString(request.get_header_value("Host"));
    if (!_options.allowRemote || hostOf(host).isEmpty())
        return base();
    bool hasPort = false;
    const uint port = host.mid(hostOf(host).size() + 1).toUInt(&hasPort);
    return "http://" + hostOf(host) + (hasPort ? ':' + QByteArray::number(port) : QByteArray());
}

QByteArray GatewayServer::Implementation::ownHost(const httplib::Request& request) const
{
    return hostOf(baseFor(request).mid(static_cast<qsizetype>(qstrlen("http://"))));
}

GatewayServer::GatewayServer(SearchSource& source, Options options)
    : _implementation(std::make_unique<Implementation>(source, std::move(options)))
{
}

GatewayServer::~GatewayServer()
{
    stop();
}

bool GatewayServer::start(QString* error)
{
    return _implementation->start(error);
}

void GatewayServer::stop()
{
    _implementation->stop();
}

QByteArray GatewayServer::base() const
{
    return _implementation->base();
}

QByteArray GatewayServer::host() const
{
    return _implementation->host();
}

int GatewayServer::port() const
{
    return _implementation->port();
}

bool GatewayServer::isLoopback(const QString& address)
{
    return isLoopbackHost(address.toUtf8());
}

} // namespace quarry
