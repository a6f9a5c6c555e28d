#include "apps/DesktopOptions.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <CLI/CLI.hpp>

namespace quarry {

namespace {

constexpr int WrongUse = 2;

QString absolutePath(const std::string& argument)
{
    const QString text = QFile::decodeName(argument.c_str());
    // Desktops hand over addresses of files.
    const QString path = text.startsWith(QLatin1String("file:")) ? QUrl(text).toLocalFile() : text;
    return QFileInfo(path).absoluteFilePath();
}

} // namespace

std::optional<DesktopOptions> DesktopOptions::fromCommandLine(int argc, char** argv, const Help& help, int* status)
{
    CLI::App app(help.description, help.program);
    app.footer(help.footer);
    app.set_version_flag("--version", QUARRY_VERSION);
    std::vector<std::string> files;
    std::string home;
    app.add_option("files", files, help.files)->type_name("FILE");
    app.add_option("--home", home, "Home folder to use (default: yours), also for the programs that this one starts")
        ->type_name("DIR")
        ->check(CLI::ExistingDirectory);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        *status = app.exit(error) == 0 ? 0 : WrongUse;
        return std::nullopt;
    }
    DesktopOptions options;
    if (!home.empty())
        options.home = absolutePath(home);
    for (const std::string& file : files)
        options.files.append(absolutePath(file));
    return options;
}

} // namespace quarry
