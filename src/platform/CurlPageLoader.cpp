#include "platform/CurlPageLoader.h"

#include "platform/NetworkReach.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>

namespace quarry {

namespace {

using SteadyClock = std::chrono::steady_clock;

struct CloseEasy {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct CloseMulti {
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};
using Easy = std::unique_ptr<CURL, CloseEasy>;
using Multi = std::unique_ptr<CURLM, CloseMulti>;

/// The handles of one thread. The transfer runs through a multi handle because that one can be left at any time;
/// it also holds the open connections.
struct ThreadHandles {
    Multi multi{curl_multi_init()};
    Easy easy{curl_easy_init()};
};

ThreadHandles& threadHandles()
{
    thread_local ThreadHandles handles;
    return handles;
}

/// What a running transfer has brought so far.
struct Transfer {
    LoadedPage page;
    CURL* easy = nullptr;
    ReplyReceiver* receiver = nullptr; ///< None: the page keeps the bytes.
    std::size_t maximum = 0;
    std::size_t received = 0;
    std::size_t errorMaximum = 0;
    bool tooLarge = false;
    const CurlPageLoader::AddressRule* mayConnect = nullptr;
    bool refused = false; ///< The rule said no.
    SteadyClock::time_point started = SteadyClock::now();
    SteadyClock::time_point lastData = started;
    std::array<char, CURL_ERROR_SIZE> fault{};
};

constexpr long FirstErrorStatus = 400;

long statusOf(CURL* easy)
{
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    return status;
}

/// Of what an error status came with, so much as is wanted; then the transfer ends.
std::size_t takeErrorBytes(Transfer& transfer, const char* data, std::size_t size)
{
    const std::size_t missing = transfer.errorMaximum - static_cast<std::size_t>(transfer.page.errorBody.size());
    try {
        transfer.page.errorBody.append(data, static_cast<qsizetype>(std::min(size, missing)));
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return size < missing ? size : 0;
}

bool keep(Transfer& transfer, const char* data, std::size_t size)
{
    if (!transfer.receiver) {
        transfer.page.bytes.append(data, static_cast<qsizetype>(size));
        return true;
    }
    if (transfer.received == 0) {
        curl_off_t length = -1;
        curl_easy_getinfo(transfer.easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
        transfer.receiver->response(length);
    }
    return transfer.receiver->take(data, size);
}

std::size_t takeBytes(char* data, std::size_t, std::size_t size, void* context)
{
    auto& transfer = *static_cast<Transfer*>(context);
    transfer.lastData = SteadyClock::now();
    if (statusOf(transfer.easy) >= FirstErrorStatus)
        return takeErrorBytes(transfer, data, size);
    if (transfer.received + size > transfer.maximum) {
        transfer.tooLarge = true;
        return 0;
    }
    // An exception must not pass through the library.
    try {
        if (!keep(transfer, data, size))
            return 0;
    } catch (const std::bad_alloc&) {
        transfer.tooLarge = true;
        return 0;
    }
    transfer.received += size;
    return size;
}

std::size_t takeHeader(char*, std::size_t, std::size_t size, void* context)
{
    static_cast<Transfer*>(context)->lastData = SteadyClock::now();
    return size;
}

bool allows(Transfer& transfer, const QByteArray& ip)
{
    if ((*transfer.mayConnect)(ip))
        return true;
    transfer.refused = true;
    return false;
}

/// For each address before it is connected to.
curl_socket_t openSocket(void* context, curlsocktype, curl_sockaddr* address)
{
    if (!allows(*static_cast<Transfer*>(context), numericAddress(address->addr)))
        return CURL_SOCKET_BAD;
    return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

/// Before each request: its connection may have been opened earlier on this thread, by a loader that may go further.
int checkConnection(void* context, char* peer, char*, int, int)
{
    return allows(*static_cast<Transfer*>(context), peer) ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

void setAddressRule(CURL* easy, Transfer& transfer)
{
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, openSocket);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_PREREQFUNCTION, checkConnection);
    curl_easy_setopt(easy, CURLOPT_PREREQDATA, &transfer);
}

void setCallbacks(CURL* easy, Transfer& transfer)
{
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, takeBytes);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, takeHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer.fault.data());
}

void setRequest(CURL* easy, const QByteArray& address, const CurlPageLoader::Limits& limits)
{
    curl_easy_setopt(easy, CURLOPT_URL, address.constData());
    const char* protocols = limits.secureOnly ? "https" : "http,https";
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, protocols);
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, limits.redirects);
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits.connecting.count()));
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(limits.total.count()));
    curl_easy_setopt(easy, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits.bytes));
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(easy, CURLOPT_USERAGENT, "QuarrySpotter/" QUARRY_VERSION);
    curl_easy_setopt(easy, CURLOPT_FAILONERROR, limits.errorBytes == 0 ? 1L : 0L);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 2L);
}

/// Setting the list of hosts that are reached directly hides the environment's own, so it is joined on.
QByteArray directHosts()
{
    QByteArray hosts = qgetenv("no_proxy");
    if (hosts.isEmpty())
        hosts = qgetenv("NO_PROXY");
    if (hosts.trimmed() == "*")
        return "*";
    return hosts.isEmpty() ? QByteArray("localhost,127.0.0.0/8,::1") : hosts + ",localhost,127.0.0.0/8,::1";
}

QString textOf(const char* text)
{
    return text ? QString::fromUtf8(text) : QString();
}

QString secondsText(std::chrono::milliseconds duration)
{
    return QString::number(static_cast<double>(duration.count()) / 1000.0);
}

/// One line for a person about a transfer that libcurl gave up.
QString reasonOf(CURLcode code, const Transfer& transfer, CURL* easy)
{
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return QStringLiteral("host not found");
    case CURLE_PARTIAL_FILE:
        return QStringLiteral("the page ended early");
    case CURLE_TOO_MANY_REDIRECTS:
        return QStringLiteral("too many redirects");
    case CURLE_UNSUPPORTED_PROTOCOL:
        return QStringLiteral("the address is neither HTTP nor HTTPS, or not HTTPS where it has to be");
    case CURLE_COULDNT_CONNECT:
        return QStringLiteral("connection refused, or no way to the host");
    case CURLE_FILESIZE_EXCEEDED:
        return QStringLiteral("the page is too large");
    case CURLE_OPERATION_TIMEDOUT:
        return statusOf(easy) == 0 ? QStringLiteral("the host does not answer")
                                   : QStringLiteral("the page takes too long");
    default:
        return transfer.fault[0] != '\0' ? textOf(transfer.fault.data()) : textOf(curl_easy_strerror(code));
    }
}

/// Takes the transfer's handle off its multi handle however the loop is left.
class Attachment final {
public:
    Attachment(CURLM* multi, CURL* easy)
        : _multi(multi), _easy(easy), _attached(curl_multi_add_handle(multi, easy) == CURLM_OK)
    {
    }
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;
    ~Attachment()
    {
        if (_attached)
            curl_multi_remove_handle(_multi, _easy);
    }
    [[nodiscard]] bool ok() const { return _attached; }

private:
    CURLM* _multi;
    CURL* _easy;
    bool _attached;
};

/// The reason for which a running transfer is to be given up; empty: go on.
QString giveUpReason(const Transfer& transfer, const CurlPageLoader::Limits& limits, bool stopped)
{
    if (stopped)
        return QStringLiteral("stopped");
    if (SteadyClock::now() - transfer.lastData > limits.withoutData)
        return QStringLiteral("no data for %1 seconds").arg(secondsText(limits.withoutData));
    return {};
}

/// Drives the transfer to its end. Returns the reason of its failure, empty on success.
QString drive(ThreadHandles& handles, const Transfer& transfer, const CurlPageLoader::Limits& limits,
              const std::atomic<bool>& stopped)
{
    CURLM* multi = handles.multi.get();
    const Attachment attachment(multi, handles.easy.get());
    if (!attachment.ok())
        return QStringLiteral("the transfer cannot be started");
    for (int running = 1;;) {
        if (QString reason = giveUpReason(transfer, limits, stopped); !reason.isEmpty())
            return reason;
        if (curl_multi_perform(multi, &running) != CURLM_OK)
            return QStringLiteral("the transfer cannot go on");
        int left = 0;
        if (const CURLMsg* message = curl_multi_info_read(multi, &left); message && message->msg == CURLMSG_DONE) {
            const CURLcode code = message->data.result;
            return code == CURLE_OK ? QString() : reasonOf(code, transfer, handles.easy.get());
        }
        curl_multi_poll(multi, nullptr, 0, 100, nullptr);
    }
}

void takeInfo(CURL* easy, LoadedPage& page)
{
    const char* text = nullptr;
    page.httpStatus = static_cast<int>(statusOf(easy));
    if (curl_easy_getinfo(easy, CURLINFO_CONTENT_TYPE, &text) == CURLE_OK)
        page.contentType = textOf(text);
    if (curl_easy_getinfo(easy, CURLINFO_EFFECTIVE_URL, &text) == CURLE_OK)
        page.finalAddress = textOf(text);
}

} // namespace

CurlPageLoader::CurlPageLoader(const Limits& limits, AddressRule mayConnect)
    : _limits(limits), _mayConnect(std::move(mayConnect)), _directHosts(_mayConnect ? QByteArray("*") : directHosts())
{
    // The library asks for this before the first thread uses it; a magic static does it once.
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    static_cast<void>(ready);
}

CurlPageLoader::~CurlPageLoader() = default;

LoadedPage CurlPageLoader::load(const QByteArray& address)
{
    return loadInto(nullptr, address);
}

LoadedPage CurlPageLoader::load(const QByteArray& address, ReplyReceiver& receiver)
{
    return loadInto(&receiver, address);
}

LoadedPage CurlPageLoader::loadInto(ReplyReceiver* receiver, const QByteArray& address)
{
    ThreadHandles& handles = threadHandles();
    Transfer transfer;
    if (!handles.easy || !handles.multi) {
        transfer.page.error = QStringLiteral("the transfer library cannot be used");
        return transfer.page;
    }
    CURL* easy = handles.easy.get();
    curl_easy_reset(easy);
    transfer.easy = easy;
    transfer.receiver = receiver;
    transfer.maximum = _limits.bytes;
    transfer.errorMaximum = _limits.errorBytes;
    setRequest(easy, address, _limits);
    if (receiver)
        curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, nullptr);
    setCallbacks(easy, transfer);
    curl_easy_setopt(easy, CURLOPT_NOPROXY, _directHosts.constData());
    transfer.mayConnect = &_mayConnect;
    if (_mayConnect)
        setAddressRule(easy, transfer);

    transfer.page.error = drive(handles, transfer, _limits, _stopped);
    if (transfer.tooLarge)
        transfer.page.error = QStringLiteral("the page is too large");
    else if (transfer.refused && !transfer.page.ok())
        transfer.page.error = QStringLiteral("the address may not be connected to");
    takeInfo(easy, transfer.page);
    // However its body came, or did not.
    if (transfer.page.httpStatus >= FirstErrorStatus && (transfer.page.ok() || !_stopped))
        transfer.page.error = QStringLiteral("HTTP status %1").arg(transfer.page.httpStatus);
    if (!transfer.page.ok())
        transfer.page.bytes.clear();
    const std::chrono::duration<double> taken = SteadyClock::now() - transfer.started;
    transfer.page.seconds = taken.count();
    curl_easy_reset(easy); // Its callbacks point into this call.
    return transfer.page;
}

} // namespace quarry
