// The main window over a large database: how soon it is there, how soon it shows what was clicked, and for how long it
// holds up the keyboard meanwhile. Starts are processes of their own. Without a screen it draws into memory.

#include "BenchTree.h"
#include "RoleRuns.h"
#include "SqliteTree.h"
#include "archive/StringTable.h"
#include "model/QueryArchive.h"
#include "platform/FileStore.h"
#include "platform/QtEventTimers.h"
#include "support/DesktopDoubles.h"
#include "window/MainWindow.h"
#include "window/ResultsPane.h"
#include "window/TreePane.h"

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableView>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace quarry::bench {

namespace {

struct Options : TreeOptions {
    qint64 started = 0; ///< By steady_clock, which all processes share.
};

/// Results of the one query that has more than the others, in theirs.
constexpr int LargestQuery = 20;

qint64 nanosecondsNow()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// Of the processor, for this thread or for the whole program: what a machine that others use does not change.
double processorMilliseconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

double millisecondsSince(qint64 start)
{
    return double(nanosecondsNow() - start) / 1e6;
}

/// By the clock on the wall and by the processor.
struct Span {
    double wall = 0.0;
    double processor = 0.0;
};

class StopWatch final {
public:
    explicit StopWatch(clockid_t clock) : _clock(clock) {}
    [[nodiscard]] Span read() const
    {
        return {millisecondsSince(_start), processorMilliseconds(_clock) - _startProcessor};
    }

private:
    clockid_t _clock;
    qint64 _start = nanosecondsNow();
    double _startProcessor = processorMilliseconds(_clock);
};

void tell(const char* what, Span span)
{
    std::printf("%s\t%.3f\t%.3f\n", what, span.wall, span.processor);
}

QString sqlitePath(const HomeFolder& home)
{
    return home.supportFolder() + QStringLiteral("/Database.sqlite");
}

/// The window with the real parts, and a stop watch that sees how long the main thread is busy at a stretch.
class Desk final {
public:
    explicit Desk(const HomeFolder& home) : _home(home)
    {
        QObject::connect(&_window.resultsPane().model(), &QAbstractItemModel::modelReset, [this] { ++_listings; });
        _window.show();
    }

    MainWindow& window() { return _window; }
    [[nodiscard]] QList<QueryCorePtr> queries() const { return _queries; }

    struct Took {
        Span whole;
        Span longest; ///< That the main thread was busy at a stretch, and took no key.
    };
    template <typename Action, typename Done>
    Took measure(const Action& action, const Done& done)
    {
        Took took;
        const StopWatch whole(CLOCK_PROCESS_CPUTIME_ID);
        const StopWatch first(CLOCK_THREAD_CPUTIME_ID);
        action();
        took.longest = first.read();
        bool isDone = false;
        do {
            isDone = done();
            const StopWatch stretch(CLOCK_THREAD_CPUTIME_ID);
            QCoreApplication::processEvents();
            const Span busy = stretch.read();
            if (busy.processor > took.longest.processor)
                took.longest = busy;
            if (!isDone)
                std::this_thread::sleep_for(std::chrono::microseconds(500));
        } while (!isDone && whole.read().wall < 60000.0);
        took.whole = whole.read();
        if (!isDone) {
            std::fprintf(stderr, "bench_window: waited in vain; %d of %lld results listed\n",
                         _window.resultsPane().model().rowCount(), wantedResults());
            std::_Exit(1);
        }
        return took;
    }
    /// Until the list is there that the action asks for.
    template <typename Action>
    Took untilListed(const Action& action)
    {
        const int before = _listings;
        return measure(action, [this, before] { return _listings > before; });
    }

    void waitForTree()
    {
        measure([] {}, [this] { return _window.tree().root()->numberOfChilds() > 0; });
        collect(_window.tree().root());
    }
    /// The window begins with one of the nodes.
    void waitForList()
    {
        measure([] {}, [this] { return _window.resultsPane().model().rowCount() == wantedResults(); });
    }
    void select(const QueryCorePtr& node) { _window.treePane().select(node ? node->UUID() : QString()); }

private:
    [[nodiscard]] long long wantedResults()
    {
        const QString current = _window.treePane().currentUuid();
        return _window.tree().counts().of(current.isEmpty() ? _window.tree().root()->UUID() : current).results;
    }
    void collect(const QueryCorePtr& node)
    {
        const QList<QueryCorePtr> childs = node->childs().value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& child : childs) {
            if (child->isQueryFolder())
                collect(child);
            else
                _queries.append(child);
        }
    }

    HomeFolder _home;
    StringTable _texts = StringTable::ofProgram(QStringLiteral("Window"));
    SystemClock _clock;
    ThreadPauser _pauser;
    DiskFileStore _files;
    NotificationCenter _center;
    QtEventTimers _timers;
    test::NotingWorkspace _workspace;
    test::LocalNotifications _distributed;
    MainWindow _window{
        WindowParts{{_home, _clock, _pauser, _files, _center, _timers}, _workspace, _distributed, _texts, {}}};
    QList<QueryCorePtr> _queries;
    int _listings = 0;
};

int make(const Options& options, const HomeFolder& home)
{
    const QueryCorePtr root = makeTree(options.queries - 1, options.results);
    const QueryCorePtr large = makeTree(1, options.results * LargestQuery);
    if (!home.makeFolders().isEmpty() || !root || !large)
        return 1;
    root->addChild(large->childs()->first()->childs()->first());
    const bool isSaved = DiskFileStore()
                             .replace(home.databaseFile(), QStringLiteral(".dat"), 0660,
                                      [&](ByteSink& sink) { return saveTree(root, sink); })
                             .ok();
    return isSaved && saveToSqlite(root, sqlitePath(home)) && indexSqlite(sqlitePath(home)) ? 0 : 1;
}

/// Both of the whole process, its start by the dynamic linker included.
Span sinceStart(const Options& options)
{
    return {millisecondsSince(options.started), processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID)};
}

int start(const Options& options, const HomeFolder& home)
{
    Desk desk(home);
    tell("window open", sinceStart(options));
    desk.waitForTree();
    tell("tree shown", sinceStart(options));
    desk.waitForList();
    tell("list shown", sinceStart(options));
    std::fflush(stdout);
    std::_Exit(0);
}

void selectQueries(Desk& desk)
{
    const QList<QueryCorePtr> queries = desk.queries();
    for (qsizetype i = 0; i + 1 < queries.size(); i += std::max<qsizetype>(1, queries.size() / 50))
        tell("select query", desk.untilListed([&] { desk.select(queries[i]); }).whole);
    for (int i = 0; i < 5; ++i) {
        tell("select folder", desk.untilListed([&] { desk.select(queries.first()->parent()); }).whole);
        tell("select largest", desk.untilListed([&] { desk.select(queries.last()); }).whole);
        const Desk::Took took = desk.untilListed([&] { desk.select(nullptr); });
        tell("select all", took.whole);
        tell("select all, held", took.longest);
        // What was asked of everything is not waited for: it must not stand in the way.
        desk.untilListed([&] { desk.select(queries[i]); });
        desk.select(nullptr);
        tell("largest meanwhile", desk.untilListed([&] { desk.select(queries.last()); }).whole);
    }
}

/// Does nothing when it is shown already.
void show(Desk& desk, const QueryCorePtr& node)
{
    if (desk.window().treePane().currentUuid() != (node ? node->UUID() : QString()))
        desk.untilListed([&] { desk.select(node); });
}

void type(Desk& desk, const QueryCorePtr& node, const char* held, const char* listed)
{
    auto* const field = desk.window().resultsPane().findChild<QLineEdit*>();
    show(desk, node);
    const auto press = [field](int key, const QString& text) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        QCoreApplication::sendEvent(field, &event);
    };
    const auto measured = [&](int key, const QString& text) {
        const Desk::Took took = desk.untilListed([&] { press(key, text); });
        tell(held, took.longest);
        tell(listed, took.whole);
    };
    const QString word = QStringLiteral("railway");
    for (const QChar letter : word)
        measured(Qt::Key_A, QString(letter));
    for (qsizetype i = 0; i < word.size(); ++i)
        measured(Qt::Key_Backspace, {});
}

/// Marks results, in the list that is shown, read and unread.
void mark(Desk& desk, const QueryCorePtr& node, const char* held)
{
    show(desk, node);
    MainWindow& window = desk.window();
    for (int i = 0; i < 10; ++i) {
        window.resultsPane().list().selectRow(i);
        QAction* const action = window.resultsPane().currentRow().data(ResultModel::UnreadRole).toBool()
                                    ? window.actions().markRead
                                    : window.actions().markUnread;
        tell(held, desk.untilListed([action] { action->trigger(); }).longest);
    }
}

/// Marks everything as read, and takes it back.
void markAll(Desk& desk)
{
    show(desk, nullptr);
    MainWindow& window = desk.window();
    const QString root = window.tree().root()->UUID();
    const auto unread = [&] { return window.tree().counts().of(root).unread; };
    const qint64 before = unread();
    QAction* undo = nullptr;
    const QList<QAction*> actions = window.findChildren<QAction*>();
    for (QAction* const action : actions)
        undo = action->shortcut() == QKeySequence(QKeySequence::Undo) ? action : undo;
    for (int i = 0; i < 3; ++i) {
        const Desk::Took marked =
            desk.measure([&] { window.actions().markAllRead->trigger(); }, [&] { return unread() == 0; });
        tell("mark all read, held", marked.longest);
        tell("mark all read", marked.whole);
        const Desk::Took undone = desk.measure([&] { undo->trigger(); }, [&] { return unread() == before; });
        tell("mark all undone, held", undone.longest);
        tell("mark all undone", undone.whole);
        // What was undone cannot be done again from then on, and is let go.
        window.resultsPane().list().selectRow(0);
        QAction* const one = window.resultsPane().currentRow().data(ResultModel::UnreadRole).toBool()
                                 ? window.actions().markRead
                                 : window.actions().markUnread;
        tell("mark after undo, held", desk.untilListed([one] { one->trigger(); }).longest);
        desk.untilListed([undo] { undo->trigger(); });
    }
}

/// Clicks through queries and marks results while the file is being written.
void workDuringSave(Desk& desk)
{
    MainWindow& window = desk.window();
    const auto isSafe = [&window] { return window.tree().safety() == LiveTree::Safety::Safe; };
    desk.measure([] {}, isSafe);
    show(desk, desk.queries().first());
    window.resultsPane().list().selectRow(0);
    window.actions().rate[3]->trigger();
    const qint64 began = nanosecondsNow();
    for (int i = 1; !isSafe() && millisecondsSince(began) < 60000.0; ++i) {
        const QueryCorePtr query = desk.queries().at(i % 500);
        tell("click while saving", desk.untilListed([&] { desk.select(query); }).whole);
        const qint64 until = nanosecondsNow() + 50'000'000;
        tell("held while saving", desk.measure([] {}, [until] { return nanosecondsNow() > until; }).longest);
    }
}

int use(const HomeFolder& home)
{
    Desk desk(home);
    desk.waitForTree();
    desk.waitForList();
    selectQueries(desk);
    type(desk, desk.queries().first(), "key in query, held", "key in query, listed");
    type(desk, desk.queries().first()->parent(), "key in folder, held", "key in folder, listed");
    type(desk, nullptr, "key in all, held", "key in all, listed");
    mark(desk, desk.queries().first(), "mark in query, held");
    mark(desk, nullptr, "mark in all, held");
    markAll(desk);
    for (int i = 0; i < 20; ++i) {
        TreeCounts counts = desk.window().tree().counts();
        const StopWatch watch(CLOCK_THREAD_CPUTIME_ID);
        counts.update(desk.window().tree().root(), {desk.queries().at(i)->UUID()});
        tell("counts update", watch.read());
    }
    workDuringSave(desk);
    std::fflush(stdout);
    std::_Exit(0);
}

/// The same questions to SQLite, with an index on the query.
int peer(const Options& options, const HomeFolder& home)
{
    for (int i = 0; i < 5; ++i) {
        const StopWatch watch(CLOCK_THREAD_CPUTIME_ID);
        if (countInSqlite(sqlitePath(home)) <= 0)
            return 1;
        tell("SQLite: open and count", watch.read());
    }
    for (int i = 0; i < 20; ++i) {
        const StopWatch watch(CLOCK_THREAD_CPUTIME_ID);
        // The first query of each folder: twenty queries follow each, as makeTree has them.
        if (listFromSqlite(sqlitePath(home), 3 + 21 * (i % std::max(1, options.queries / 20))) <= 0)
            return 1;
        tell("SQLite: list of a query", watch.read());
    }
    std::fflush(stdout);
    return 0;
}

class Measurements final {
public:
    Measurements(const Options& options, const QString& folder) : _options(options), _folder(folder) {}

    bool run(const char* role)
    {
        const auto output =
            outputOfRole(_options, role, _folder, {QStringLiteral("--started"), QString::number(nanosecondsNow())});
        if (!output)
            return false;
        const QList<QByteArray> lines = output->split('\n');
        for (const QByteArray& line : lines) {
            if (const QList<QByteArray> words = line.split('\t'); words.size() == 3)
                _samples[words[0].toStdString()].push_back({words[1].toDouble(), words[2].toDouble()});
        }
        return true;
    }

    /// `target` in milliseconds of the wall, for the median; 0: none.
    void print(const char* what, double target)
    {
        const std::vector<Span>& samples = _samples[what];
        if (samples.empty()) {
            std::printf("%-24s not measured\n", what);
            return;
        }
        const std::vector<double> wall = sorted(samples, &Span::wall);
        const std::vector<double> processor = sorted(samples, &Span::processor);
        const double median = wall[wall.size() / 2];
        std::printf("%-24s %9.2f ms, worst %9.2f ms   of the processor %9.2f ms, worst %9.2f ms", what, median,
                    wall.back(), processor[processor.size() / 2], processor.back());
        if (target > 0.0)
            std::printf("   target %4.0f ms %s", target, median <= target ? "met" : "MISSED");
        std::printf("\n");
    }

private:
    static std::vector<double> sorted(const std::vector<Span>& samples, double Span::*part)
    {
        std::vector<double> values;
        for (const Span& sample : samples)
            values.push_back(sample.*part);
        std::sort(values.begin(), values.end());
        return values;
    }

    Options _options;
    QString _folder;
    std::map<std::string, std::vector<Span>> _samples;
};

int report(const Options& options)
{
    const QTemporaryDir folder(QDir::currentPath() + QStringLiteral("/bench-window-XXXXXX"));
    Measurements measure(options, folder.path());
    bool ok = folder.isValid() && measure.run("make") && measure.run("peer") && measure.run("use");
    for (int i = 0; ok && i < options.runs; ++i)
        ok = measure.run("start");
    if (!ok) {
        std::fprintf(stderr, "bench_window: a measurement failed\n");
        return 1;
    }
    std::printf("%d queries with %d results, one with %d; medians\n", options.queries, options.results,
                options.results * LargestQuery);
    constexpr double Frame = 16.0;
    constexpr double Click = 50.0;
    constexpr double Start = 2000.0;
    const std::pair<const char*, double> rows[] = {{"window open", 0.0},
                                                   {"tree shown", Start},
                                                   {"list shown", 0.0},
                                                   {"SQLite: open and count", 0.0},
                                                   {"select query", Click},
                                                   {"SQLite: list of a query", 0.0},
                                                   {"select largest", Click},
                                                   {"largest meanwhile", Click},
                                                   {"select folder", Click},
                                                   {"select all", 0.0},
                                                   {"select all, held", Frame},
                                                   {"key in query, held", Frame},
                                                   {"key in query, listed", 0.0},
                                                   {"key in folder, held", Frame},
                                                   {"key in folder, listed", 0.0},
                                                   {"key in all, held", Frame},
                                                   {"key in all, listed", 0.0},
                                                   {"mark in query, held", Frame},
                                                   {"mark in all, held", Frame},
                                                   {"mark all read, held", Frame},
                                                   {"mark all read", 0.0},
                                                   {"mark all undone, held", Frame},
                                                   {"mark all undone", 0.0},
                                                   {"mark after undo, held", Frame},
                                                   {"counts update", Frame},
                                                   {"click while saving", Click},
                                                   {"held while saving", Frame}};
    for (const auto& [what, target] : rows)
        measure.print(what, target);
    return 0;
}

int runRole(const Options& options)
{
    const HomeFolder home(QString::fromStdString(options.folder));
    if (options.role == "make")
        return make(options, home);
    if (options.role == "peer")
        return peer(options, home);
    return options.role == "start" ? start(options, home) : use(home);
}

} // namespace

} // namespace quarry::bench

int main(int argc, char** argv)
{
    // The same with and without a screen, and no window jumps up.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    quarry::bench::Options options;
    CLI::App arguments("Measures the main window over a large database");
    options.addTo(arguments);
    arguments.add_option("--started", options.started, "When this process was started")->group("");
    CLI11_PARSE(arguments, argc, argv);
    return options.role.empty() ? quarry::bench::report(options) : quarry::bench::runRole(options);
}
