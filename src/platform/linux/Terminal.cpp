#include "platform/Terminal.h"

#include <signal.h>
#include <unistd.h>

namespace quarry {

bool isTerminal(std::FILE* stream)
{
    return ::isatty(::fileno(stream)) == 1;
}

void ignoreBrokenPipes()
{
    ::signal(SIGPIPE, SIG_IGN);
}

} // namespace quarry
