#include "platform/StopSignals.h"

#include <signal.h>
#include <unistd.h>

#include <ctime>

namespace quarry {

namespace {

sigset_t stopSet()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGHUP);
    return set;
}

} // namespace

StopSignals::StopSignals()
{
    const sigset_t set = stopSet();
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

bool StopSignals::wait()
{
    return _come || waitForNext();
}

bool StopSignals::waitForNext()
{
    const sigset_t set = stopSet();
    int signal = 0;
    while (!_cancelled && ::sigwait(&set, &signal) != 0)
        ;
    if (_cancelled)
        return false;
    _come = true;
    return true;
}

void StopSignals::request()
{
    // To the process as a whole: every thread holds it back, and the one that waits takes it.
    ::kill(::getpid(), SIGTERM);
}

void StopSignals::cancel()
{
    _cancelled = true;
    request();
}

bool StopSignals::hasCome()
{
    const sigset_t set = stopSet();
    const timespec atOnce = {};
    if (!_come)
        _come = ::sigtimedwait(&set, nullptr, &atOnce) > 0;
    return _come;
}

} // namespace quarry
