#include "platform/Terminal.h"

#include <unistd.h>

namespace quarry {

bool isTerminal(std::FILE* stream)
{
    return ::isatty(::fileno(stream)) == 1;
}

} // namespace quarry
