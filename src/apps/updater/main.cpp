#include "apps/RegexMessages.h"
#include "apps/updater/Refresh.h"
#include "apps/updater/RefreshSinks.h"
#include "platform/StopSignals.h"
#include "platform/Terminal.h"
#include "platform/desktop/QuitListener.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

using namespace quarry;

/// A Ctrl-C comes twice when the program that started this one passes it on as well.
constexpr std::chrono::seconds OneRequest(2);

/// Stops the refresh at the first signal; ends the program at one that comes long after, should it hang.
void watch(StopSignals& signals, Refresh& refresh)
{
    if (!signals.wait())
        return;
    refresh.stop();
    const auto asked = std::chrono::steady_clock::now();
    while (signals.waitForNext()) {
        if (std::chrono::steady_clock::now() - asked > OneRequest)
            std::quick_exit(Stopped);
    }
}

} // namespace

int main(int argc, char** argv)
{
    StopSignals signals; // Before any thread.
    ignoreBrokenPipes();
    localiseRegexMessages();
    const QCoreApplication application(argc, argv);
    int status = AllUpdated;
    const auto options = UpdaterOptions::fromCommandLine(argc, argv, &status);
    if (!options)
        return status;
    RefreshProgress progress(options->progress ? eventLines() : eventText(isTerminal(stderr)));
    Refresh refresh(*options, progress);
    std::thread watcher([&] { watch(signals, refresh); });
    const QuitListener listener([&] { signals.request(); });
    status = refresh.run();
    signals.cancel();
    watcher.join();
    return status;
}
