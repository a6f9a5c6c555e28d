#include "agent/DesktopSession.h"
#include "apps/agent/AgentOptions.h"
#include "apps/agent/AgentProgram.h"
#include "platform/StopSignals.h"
#include "platform/SystemLog.h"
#include "platform/Terminal.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>

#include <thread>

namespace {

using namespace quarry;

constexpr int Failed = 1;

int run(const AgentOptions& options, StopSignals& signals)
{
    AgentProgram agent;
    // From the event loop: an agent that is not wanted ends it.
    QMetaObject::invokeMethod(
        qApp, [&] { agent.start(options.files); }, Qt::QueuedConnection);
    std::thread watcher([&signals] {
        if (signals.wait())
            QMetaObject::invokeMethod(
                qApp, [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
    });
    const int status = QCoreApplication::exec();
    signals.cancel();
    watcher.join();
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    StopSignals signals; // Before any thread.
    ignoreBrokenPipes();
    int status = 0;
    const auto options = AgentOptions::fromCommandLine(argc, argv, &status);
    if (!options)
        return status;
    // For what the agent starts, too.
    if (!options->home.isEmpty())
        qputenv("HOME", QFile::encodeName(QFileInfo(options->home).absoluteFilePath()));
    if (const QString missing = whyNoScreen(); !missing.isEmpty()) {
        systemLog(missing);
        return Failed;
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationName(QStringLiteral("QuarrySpotter"));
    return run(*options, signals);
}
