#include "apps/gateway/GatewayOptions.h"
#include "gateway/FolderSource.h"
#include "gateway/GatewayServer.h"
#include "gateway/ServicesFile.h"
#include "platform/StopSignals.h"
#include "platform/Terminal.h"
#include "platform/desktop/QuitListener.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <chrono>
#include <cstdint>
#include <cstdio>

namespace {

using namespace quarry;

constexpr int failed = 1;

int fail(const QString& reason)
{
    std::fprintf(stderr, "quarry-gateway: %s\n", qUtf8Printable(reason));
    return failed;
}

/// Counts on one line for a person; asked after every file, so it looks at the clock first.
FolderReader::Progress progressLine(StopSignals& signals)
{
    const bool isShown = isTerminal(stderr);
    auto next = std::chrono::steady_clock::now();
    return [&signals, isShown, next](std::int64_t files) mutable {
        const auto now = std::chrono::steady_clock::now();
        if (now < next)
            return true;
        next = now + std::chrono::milliseconds(100);
        if (isShown)
            std::fprintf(stderr, "\rreading documents: %lld files", static_cast<long long>(files));
        return !signals.hasCome();
    };
}

int serve(const GatewayOptions& options, StopSignals& signals)
{
    QString error;
    const auto source = FolderSource::open({options.folder, options.indexFile, progressLine(signals)}, &error);
    if (isTerminal(stderr))
        std::fputs("\r\033[K", stderr);
    if (!source)
        return error.isEmpty() ? 0 : fail(error);

    GatewayServer::Options serverOptions;
    serverOptions.address = options.address;
    serverOptions.port = options.port;
    serverOptions.allowRemote = options.allowRemote;
    if (options.isVerbose)
        serverOptions.log = [](const QByteArray& line) { std::fprintf(stderr, "%s\n", line.constData()); };
    GatewayServer server(*source, serverOptions);
    if (!server.start(&error))
        return fail(error);
    if (!options.servicesFile.isEmpty()) {
        // An address that stands for all of a machine's is none to send a request to.
        const QByteArray host = server.host() == "0.0.0.0" ? QByteArray("127.0.0.1") : server.host();
        error = writeServicesFile(options.servicesFile, host, server.port());
        if (!error.isEmpty())
            return fail(error);
    }
    std::printf("listening on %s, %lld documents\n", server.base().constData(),
                static_cast<long long>(source->documentCount()));
    std::fflush(stdout);
    // An update of the product replaces this program, too.
    const QuitListener listener([&] { signals.request(); });
    signals.wait();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    StopSignals signals; // Before any thread.
    QCoreApplication application(argc, argv);
    int status = 0;
    const auto options = GatewayOptions::fromCommandLine(argc, argv, &status);
    return options ? serve(*options, signals) : status;
}
