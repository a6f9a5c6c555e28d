// The maker's side of software updates: keys, disk images, signatures and the update script's answer.
#include "apps/release/Release.h"

#include <CLI/CLI.hpp>
#include <clocale>
#include <cstdio>
#include <string>

using namespace quarry;

namespace {

int finish(const ReleaseResult& result)
{
    if (!result.fault.isEmpty()) {
        std::fprintf(stderr, "quarry-release: %s\n", result.fault.toUtf8().constData());
        return 1;
    }
    std::fputs(result.report.toUtf8().constData(), stdout);
    return 0;
}

} // namespace

int main(int count, char** arguments)
{
    std::setlocale(LC_CTYPE, "C.UTF-8");
    CLI::App app("Makes what software updates of QuarrySpotter are delivered with.", "quarry-release");
    app.require_subcommand(1);
    app.set_version_flag("--version", "quarry-release " QUARRY_VERSION);

    std::string keyFile;
    CLI::App* const key = app.add_subcommand("key", "Make a signing key and print its public key");
    key->add_option("FILE", keyFile, "New file for the secret key")->required();

    std::string bundle, signingKey, page, imageUrl;
    std::string folder = ".";
    int minimumOs = 0;
    CLI::App* const make = app.add_subcommand("make", "Build and sign the disk image, and write the script's answer");
    make->add_option("BUNDLE", bundle, "The installed QuarrySpotter.app")->required();
    make->add_option("--key", signingKey, "File with the secret key; without it the image is not signed");
    make->add_option("--output", folder, "Folder for the files (default: here)");
    make->add_option("--page", page, "Address of the product's web page")->required();
    make->add_option("--url", imageUrl, "Address that the files will be served from")->required();
    make->add_option("--minimum-os", minimumOs, "Least version of the system, major×10000 + minor×100 + patch")
        ->check(CLI::NonNegativeNumber);

    CLI11_PARSE(app, count, arguments);
    if (*key)
        return finish(makeKey(QString::fromStdString(keyFile)));
    return finish(
        makeRelease({QString::fromStdString(bundle), QString::fromStdString(signingKey), QString::fromStdString(folder),
                     QString::fromStdString(page), QString::fromStdString(imageUrl), minimumOs}));
}
