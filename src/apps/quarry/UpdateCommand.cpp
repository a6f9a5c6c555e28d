#include "apps/quarry/CommandLine.h"
#include "apps/quarry/UpdateRun.h"
#include "platform/StopSignals.h"
#include "platform/Terminal.h"

#include <QCoreApplication>
#include <QFile>

#include <array>
#include <thread>

namespace quarry {

namespace {

struct Options {
    bool check = false;
    bool install = false;
};

Outcome update(Session& session, const Options& options)
{
    if (options.check && options.install)
        return Outcome::wrongUse(QStringLiteral("--check and --install exclude each other"));
    if (Outcome home = session.checkHome(); !home.ok())
        return home;
    StopSignals signals; // Before any thread.
    ignoreBrokenPipes();
    // For the Trash, and for what is started.
    qputenv("HOME", QFile::encodeName(session.home().path()));
    std::array<char, 7> name{"quarry"};
    std::array<char*, 2> arguments{name.data(), nullptr};
    int count = 1;
    const QCoreApplication application(count, arguments.data());
    UpdateRun run(session, options.check     ? UpdateRun::Mode::Check
                           : options.install ? UpdateRun::Mode::Install
                                             : UpdateRun::Mode::Ask);
    std::thread watcher([&] {
        bool isAsked = signals.wait();
        for (; isAsked; isAsked = signals.waitForNext())
            QMetaObject::invokeMethod(
                qApp, [&run] { run.stop(); }, Qt::QueuedConnection);
    });
    Outcome outcome = run.run();
    signals.cancel();
    watcher.join();
    return outcome;
}

} // namespace

void addUpdateCommand(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    line.command(QStringLiteral("Settings"), QStringLiteral("update"),
                 QStringLiteral("Look for a newer version of QuarrySpotter and install it"),
                 {QStringLiteral("quarry update                  # asks before it installs"),
                  QStringLiteral("quarry update --check          # only tells"),
                  QStringLiteral("quarry update --install        # for scripts: does not ask"), QString(),
                  QStringLiteral("Ctrl-C stops it and leaves nothing, until the new version takes its place."),
                  QStringLiteral("Every other program of QuarrySpotter quits for the install; the agent runs again "
                                 "after it.")})
        .flag(QStringLiteral("--check"), options->check, QStringLiteral("Say whether there is one, and no more"))
        .flag(QStringLiteral("--install,-y"), options->install, QStringLiteral("Install it without asking"))
        .action([options](Session& session) { return update(session, *options); });
}

} // namespace quarry
