#include "apps/gateway/GatewayOptions.h"

#include "gateway/GatewayServer.h"
#include "platform/Bundle.h"

#include <QFileInfo>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

namespace quarry {

namespace {

constexpr int wrongUse = 2;

constexpr const char* description =
    "Answers the search services' requests on this machine, from a folder of documents.\n"
    "Prints \"listening on http://ADDRESS:PORT, N documents\" when it is ready; an interrupt ends it.";

constexpr const char* examples =
    "Examples:\n"
    "  quarry-gateway\n"
    "      serves the machine's documentation on a free port\n"
    "  quarry-gateway --folder ~/Notes --port 8642 --index ~/.cache/notes.index\n"
    "      serves your notes; the next start reads only what changed\n"
    "  quarry-gateway --port 8642 --write-services \\\n"
    "      ~/\"Library/Application Support/QuarrySpotter/SearchServices.plist\"\n"
    "      points all five services of your queries here\n"
    "  quarry-gateway --listen 192.168.1.5 --allow-remote --port 8642\n"
    "      lets other machines search and read the folder: everybody who reaches that address\n";

QString text(const std::string& value)
{
    return QString::fromStdString(value);
}

QString defaultFolder()
{
    const QString documentation = QStringLiteral("/usr/share/doc");
    return QFileInfo(documentation).isDir()
               ? documentation
               : Bundle::ofProgram().resourcesFolder() + QStringLiteral("/sample-documents");
}

int refuse(const char* reason)
{
    std::fprintf(stderr, "quarry-gateway: %s\n", reason);
    return wrongUse;
}

} // namespace

std::optional<GatewayOptions> GatewayOptions::fromCommandLine(int argc, char** argv, int* status)
{
    CLI::App app(description, "quarry-gateway");
    app.footer(examples);
    app.set_version_flag("--version", QUARRY_VERSION);
    std::string folder, index, services, address = "127.0.0.1";
    GatewayOptions options;
    app.add_option("--folder", folder, "Folder of documents (default: /usr/share/doc, else the bundled texts)")
        ->type_name("DIR");
    app.add_option("--port", options.port, "Port to listen on; 0 takes a free one")
        ->type_name("N")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    app.add_option("--index", index, "Keep the index in this file (default: in memory)")->type_name("FILE");
    app.add_option("--write-services", services, "Write a SearchServices.plist that points all five services here")
        ->type_name("FILE");
    app.add_option("--listen", address, "Address to listen on")->type_name("ADDRESS")->capture_default_str();
    app.add_flag("--allow-remote", options.allowRemote, "Needed for an address that other machines can reach");
    app.add_flag("--verbose", options.isVerbose, "Print a line a request on standard error");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        *status = app.exit(error) == 0 ? 0 : wrongUse;
        return std::nullopt;
    }
    options.folder = folder.empty() ? defaultFolder() : text(folder);
    options.indexFile = text(index);
    options.address = text(address).remove(u'[').remove(u']');
    options.servicesFile = text(services);
    if (!options.allowRemote && !GatewayServer::isLoopback(options.address)) {
        *status = refuse("other machines can reach that address, and with it every document of the folder; "
                         "add --allow-remote if that is what you want");
        return std::nullopt;
    }
    if (!options.servicesFile.isEmpty() && options.address.contains(u':')) {
        *status = refuse("--write-services needs a host name or an IPv4 address to listen on");
        return std::nullopt;
    }
    return options;
}

} // namespace quarry
