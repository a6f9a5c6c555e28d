#pragma once

#include <QtGlobal>

#include <optional>

namespace quarry::bench {

/// What a process has used so far.
struct ProcessFigures {
    double processorSeconds = 0.0;
    double residentMegabytes = 0.0;
    double bytesToDisk = 0.0; ///< Handed to a disk for writing.
};

/// None for a process that is gone.
[[nodiscard]] std::optional<ProcessFigures> figuresOf(qint64 process);

} // namespace quarry::bench
