// Load and save of a large database, beside SQLite doing the same. Each measurement is a process of its own, so that
// its peak memory is its own.

#include "BenchTree.h"
#include "RoleRuns.h"
#include "SqliteTree.h"
#include "model/QueryArchive.h"
#include "platform/FileStore.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace quarry::bench {

namespace {

struct Sample {
    double seconds = 0.0;
    double peakMegabytes = 0.0;
};

constexpr double Megabyte = 1e6;

QString databasePath(const QString& folder)
{
    return folder + QStringLiteral("/Database.qsdata");
}

QString sqlitePath(const QString& folder)
{
    return folder + QStringLiteral("/Database.sqlite");
}

/// The most memory this process ever had, in megabytes.
double peakMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0.0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() * 1024.0 / Megabyte;
    }
    return 0.0;
}

LoadedTree load(const QString& folder)
{
    return loadTree(DiskFileStore().read(databasePath(folder)).bytes);
}

bool save(const QueryCorePtr& root, const QString& folder)
{
    DiskFileStore files;
    return files
        .replace(databasePath(folder), QStringLiteral(".dat"), 0660,
                 [&](ByteSink& sink) { return saveTree(root, sink); })
        .ok();
}

bool checkedSave(const QueryCorePtr& root, const QString& folder)
{
    return root && save(root, folder);
}

void collect(const QueryCorePtr& node, ResultList& records)
{
    const QueryCore::Snapshot state = node->snapshot();
    records += state.fields._currentResult.value_or(ResultList());
    for (const QueryCorePtr& child : state.childs.value_or(QList<QueryCorePtr>()))
        collect(child, records);
}

/// Both files hold the same records, so that both sides were measured doing the same.
bool filesAgree(const QString& folder)
{
    ResultList ours;
    const LoadedTree tree = load(folder);
    if (tree.root)
        collect(tree.root, ours);
    return !ours.isEmpty() && ours == readFromSqlite(sqlitePath(folder));
}

template <typename Action>
int measured(const Action& action)
{
    const auto start = std::chrono::steady_clock::now();
    const bool ok = action();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::printf("%.4f %.1f\n", took.count(), peakMegabytes());
    std::fflush(stdout);
    // What was loaded is not taken apart again: that is not part of the measurement.
    std::_Exit(ok ? 0 : 1);
}

int runRole(const TreeOptions& options)
{
    const QString folder = QString::fromStdString(options.folder);
    if (options.role == "make") {
        const QueryCorePtr root = makeTree(options.queries, options.results);
        return checkedSave(root, folder) && saveToSqlite(root, sqlitePath(folder)) && filesAgree(folder) ? 0 : 1;
    }
    if (options.role == "load") {
        LoadedTree tree;
        return measured([&] { return (tree = load(folder)).root != nullptr; });
    }
    if (options.role == "read-sqlite") {
        ResultList records;
        return measured([&] { return !(records = readFromSqlite(sqlitePath(folder))).isEmpty(); });
    }
    const LoadedTree tree = load(folder);
    if (options.role == "save")
        return measured([&] { return checkedSave(tree.root, folder); });
    if (options.role == "save-sqlite")
        return measured([&] { return saveToSqlite(tree.root, sqlitePath(folder)); });
    return 2;
}

class Measurements final {
public:
    Measurements(const TreeOptions& options, const QString& folder) : _options(options), _folder(folder) {}

    bool make() { return outputOfRole(_options, "make", _folder).has_value(); }

    /// Measures each role in turn, and again, so that whatever else the machine does falls on all of them. False when
    /// one failed.
    bool run(const std::vector<const char*>& roles)
    {
        for (int i = 0; i < _options.runs; ++i) {
            for (const char* role : roles) {
                const QList<QByteArray> words =
                    outputOfRole(_options, role, _folder).value_or(QByteArray()).trimmed().split(' ');
                if (words.size() != 2)
                    return false;
                _samples[role].push_back({words[0].toDouble(), words[1].toDouble()});
            }
        }
        return true;
    }

    /// Of the runs, by seconds.
    Sample median(const char* role)
    {
        std::vector<Sample>& samples = _samples[role];
        std::sort(samples.begin(), samples.end(),
                  [](const Sample& a, const Sample& b) { return a.seconds < b.seconds; });
        return samples[samples.size() / 2];
    }

private:
    TreeOptions _options;
    QString _folder;
    std::map<std::string, std::vector<Sample>> _samples;
};

int report(const TreeOptions& options)
{
    const QTemporaryDir folder(QDir::currentPath() + QStringLiteral("/bench-database-XXXXXX"));
    Measurements measure(options, folder.path());
    if (!folder.isValid() || !measure.make()) {
        std::fprintf(stderr, "bench_database: the databases could not be made, or do not hold the same\n");
        return 1;
    }
    if (!measure.run({"read-sqlite", "load", "save-sqlite", "save"})) {
        std::fprintf(stderr, "bench_database: a measurement failed\n");
        return 1;
    }
    const double file = double(QFileInfo(databasePath(folder.path())).size()) / Megabyte;
    const double sqliteFile = double(QFileInfo(sqlitePath(folder.path())).size()) / Megabyte;
    std::printf("%d queries with %d results, median of %d runs; file %.1f MB, SQLite's %.1f MB\n", options.queries,
                options.results, options.runs, file, sqliteFile);
    const auto line = [&](const char* what, const Sample& ours, const Sample& theirs) {
        std::printf("%-5s %7.3f s   SQLite %7.3f s   ratio %5.2f   peak %7.1f MB = %.2f files\n", what, ours.seconds,
                    theirs.seconds, ours.seconds / theirs.seconds, ours.peakMegabytes, ours.peakMegabytes / file);
    };
    line("load", measure.median("load"), measure.median("read-sqlite"));
    line("save", measure.median("save"), measure.median("save-sqlite"));
    return 0;
}

} // namespace

} // namespace quarry::bench

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    quarry::bench::TreeOptions options;
    options.results = 100;
    CLI::App arguments("Measures load and save of a large database beside SQLite");
    options.addTo(arguments);
    CLI11_PARSE(arguments, argc, argv);
    return options.role.empty() ? quarry::bench::report(options) : quarry::bench::runRole(options);
}
