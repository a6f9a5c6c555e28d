#pragma once

#include "platform/StopSignals.h"

#include <QCoreApplication>

#include <thread>

namespace quarry {

/// Runs the event loop. Calls `stop` from within it when a signal asks the program to end. Answers the exit status.
template <typename Stop>
int runEventLoop(StopSignals& signals, const Stop& stop)
{
    QObject loop; // What comes too late is forgotten with it.
    std::thread watcher([&] {
        if (signals.wait())
            QMetaObject::invokeMethod(&loop, stop, Qt::QueuedConnection);
    });
    const int status = QCoreApplication::exec();
    signals.cancel();
    watcher.join();
    return status;
}

} // namespace quarry
