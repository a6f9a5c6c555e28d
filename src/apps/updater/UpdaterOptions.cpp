#include "apps/updater/UpdaterOptions.h"

#include "platform/HomeFolder.h"

#include <CLI/CLI.hpp>

namespace quarry {

namespace {

// Some thirty years either way; dates beyond serve nothing.
constexpr qint64 MostSeconds = 1000000000;

constexpr const char* description =
    "Asks the search services for what is new and merges it into the database: one refresh, then it ends.\n"
    "Only one runs at a time. An interrupt ends it within a second; what was found by then is saved.";

constexpr const char* footer =
    "Exit status: 0 every query was updated, 1 nothing could be saved or read, 2 wrong use,\n"
    "3 some queries were not updated, 4 another refresh runs, 5 stopped before the end.\n"
    "\n"
    "Examples:\n"
    "  QuarrySpotterUpdater\n"
    "      refreshes everything that is enabled\n"
    "  QuarrySpotterUpdater \"garden tools\" 5F0C\n"
    "      refreshes one query by its title, one by the beginning of its UUID\n"
    "  QuarrySpotterUpdater --home /tmp/demo --clock-offset 22000 --progress\n"
    "      as if it were six hours later, telling a program what happens\n";

} // namespace

std::optional<UpdaterOptions> UpdaterOptions::fromCommandLine(int argc, char** argv, int* status)
{
    CLI::App app(description, "QuarrySpotterUpdater");
    app.footer(footer);
    app.set_version_flag("--version", QUARRY_VERSION);
    std::vector<std::string> queries;
    std::string home;
    UpdaterOptions options;
    app.add_option("queries", queries, "Queries or folders, by UUID, beginning of one, or title (default: everything)")
        ->type_name("QUERY");
    app.add_option("--home", home, "Home folder to use (default: yours)")->type_name("DIR");
    app.add_option("--clock-offset", options.clockOffset,
                   "Shift the clock, for demonstrations: 1000 passes the 15 "
                   "minutes within which a query is not asked again, 22000 "
                   "the six hours of the page cache")
        ->type_name("SECONDS")
        ->check(CLI::Range(-MostSeconds, MostSeconds));
    app.add_flag("--progress", options.progress, "Tell what happens on standard output, a JSON object a line");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        *status = app.exit(error) == 0 ? AllUpdated : WrongUse;
        return std::nullopt;
    }
    for (const std::string& query : queries)
        options.queries.append(QString::fromStdString(query));
    options.home = home.empty() ? HomeFolder::ofUser().path() : QString::fromStdString(home);
    return options;
}

} // namespace quarry
