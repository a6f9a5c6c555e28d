#include "platform/ProcessEnd.h"

#include "platform/linux/Descriptor.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

namespace quarry {

bool waitForProcessEnd(std::int64_t processId)
{
    if (processId <= 0 || processId > INT_MAX)
        return false;
    const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(processId), 0U)));
    if (!process.isOpen())
        return errno == ESRCH;
    pollfd watched{process.get(), POLLIN, 0};
    while (::poll(&watched, 1, -1) < 0) {
        if (errno != EINTR)
            return false;
    }
    return true;
}

} // namespace quarry
