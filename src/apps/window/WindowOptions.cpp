#include "apps/window/WindowOptions.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <CLI/CLI.hpp>

namespace quarry {

namespace {

constexpr int WrongUse = 2;

constexpr const char* description = "Watches web searches: keeps them fresh and shows what is new.\n"
                                    "One window a user: a second start brings the first to the front.";

constexpr const char* footer = "An interrupt or SIGTERM saves and ends it.\n";

QString absolutePath(const std::string& argument)
{
    const QString text = QFile::decodeName(argument.c_str());
    // Desktops hand over addresses of files.
    const QString path = text.startsWith(QLatin1String("file:")) ? QUrl(text).toLocalFile() : text;
    return QFileInfo(path).absoluteFilePath();
}

} // namespace

std::optional<WindowOptions> WindowOptions::fromCommandLine(int argc, char** argv, int* status)
{
    CLI::App app(description, "QuarrySpotter");
    app.footer(footer);
    app.set_version_flag("--version", QUARRY_VERSION);
    std::vector<std::string> files;
    std::string home;
    app.add_option("files", files, "Exported files (.qsexport) or lists of searches (OPML) to import")
        ->type_name("FILE");
    app.add_option("--home", home, "Home folder to use (default: yours), also for what the window starts")
        ->type_name("DIR")
        ->check(CLI::ExistingDirectory);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        *status = app.exit(error) == 0 ? 0 : WrongUse;
        return std::nullopt;
    }
    WindowOptions options;
    if (!home.empty())
        options.home = absolutePath(home);
    for (const std::string& file : files)
        options.files.append(absolutePath(file));
    return options;
}

} // namespace quarry
