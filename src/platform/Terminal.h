#pragma once

#include <cstdio>

namespace quarry {

/// Whether a person is looking at that stream (stdout, stderr), and not a file or a pipe.
[[nodiscard]] bool isTerminal(std::FILE* stream);

} // namespace quarry
