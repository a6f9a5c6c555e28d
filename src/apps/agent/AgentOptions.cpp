#include "apps/agent/AgentOptions.h"

#include <CLI/CLI.hpp>

namespace quarry {

namespace {

constexpr int WrongUse = 2;

constexpr const char* description =
    "Lives in the status bar: keeps the schedule of refreshes and shows what is new.\n"
    "It starts at login while automatic refresh is on, and leaves when that is off or another agent runs.";

constexpr const char* footer = "An interrupt or SIGTERM ends it.\n"
                               "\n"
                               "Switch it on and off with quarry schedule on, quarry schedule off.\n";

} // namespace

std::optional<AgentOptions> AgentOptions::fromCommandLine(int argc, char** argv, int* status)
{
    CLI::App app(description, "QuarrySpotterAgent");
    app.footer(footer);
    app.set_version_flag("--version", QUARRY_VERSION);
    std::vector<std::string> files;
    std::string home;
    app.add_option("files", files, "Exported files (.qsexport) to open with the main application")->type_name("FILE");
    app.add_option("--home", home, "Home folder to use (default: yours), also for what the agent starts")
        ->type_name("DIR")
        ->check(CLI::ExistingDirectory);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        *status = app.exit(error) == 0 ? 0 : WrongUse;
        return std::nullopt;
    }
    AgentOptions options;
    options.home = QString::fromStdString(home);
    for (const std::string& file : files)
        options.files.append(QString::fromStdString(file));
    return options;
}

} // namespace quarry
