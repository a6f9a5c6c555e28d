#pragma once

#include <cstdio>

namespace quarry {

/// Whether a person is looking at that stream (stdout, stderr), and not a file or a pipe.
[[nodiscard]] bool isTerminal(std::FILE* stream);

/// From now on, writing to a pipe that nobody reads any more fails instead of ending the program.
void ignoreBrokenPipes();

} // namespace quarry
