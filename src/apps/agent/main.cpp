#include "agent/DesktopSession.h"
#include "apps/DesktopLoop.h"
#include "apps/DesktopOptions.h"
#include "apps/agent/AgentProgram.h"
#include "platform/SystemLog.h"
#include "platform/Terminal.h"

#include <QApplication>
#include <QFile>

namespace {

using namespace quarry;

constexpr int Failed = 1;

constexpr DesktopOptions::Help Help = {
    "QuarrySpotterAgent",
    "Lives in the status bar: keeps the schedule of refreshes and shows what is new.\n"
    "It starts at login while automatic refresh is on, and leaves when that is off or another agent runs.",
    "Exported files (.qsexport) to open with the main application",
    "An interrupt or SIGTERM ends it.\n"
    "\n"
    "Switch it on and off with quarry schedule on, quarry schedule off.\n"};

int run(const DesktopOptions& options, StopSignals& signals)
{
    AgentProgram agent;
    // From the event loop: an agent that is not wanted ends it.
    QMetaObject::invokeMethod(
        qApp, [&] { agent.start(options.files); }, Qt::QueuedConnection);
    return runEventLoop(signals, [] { QCoreApplication::exit(0); });
}

} // namespace

int main(int argc, char** argv)
{
    StopSignals signals; // Before any thread.
    ignoreBrokenPipes();
    int status = 0;
    const auto options = DesktopOptions::fromCommandLine(argc, argv, Help, &status);
    if (!options)
        return status;
    // For what the agent starts, too.
    if (!options->home.isEmpty())
        qputenv("HOME", QFile::encodeName(options->home));
    if (const QString missing = whyNoScreen(); !missing.isEmpty()) {
        systemLog(missing);
        return Failed;
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationName(QStringLiteral("QuarrySpotter"));
    return run(*options, signals);
}
