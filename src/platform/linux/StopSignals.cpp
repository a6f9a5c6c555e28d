#include "platform/StopSignals.h"

#include <signal.h>

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

void StopSignals::wait()
{
    const sigset_t set = stopSet();
    int signal = 0;
    while (!_come)
        _come = ::sigwait(&set, &signal) == 0;
}

bool StopSignals::hasCome()
{
    const sigset_t set = stopSet();
    const timespec atOnce = {};
    _come = _come || ::sigtimedwait(&set, nullptr, &atOnce) > 0;
    return _come;
}

} // namespace quarry
