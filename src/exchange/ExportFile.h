#pragma once

#include "exchange/Exports.h"
#include "platform/HomeFolder.h"

#include <atomic>

namespace quarry {

/// An export as a file.
struct ExportFile {
    QString path;  ///< Where it went.
    QString error; ///< One line for a person; empty when it is there as a whole.
};

/// Writes an export to a file, replacing one that is there; what a link leads to is replaced, not the link. Nothing is
/// written among the product's own files, nor over what is no regular file. `cancelled` (may be null) may be set by
/// another thread: then nothing is written, and the error is of no interest.
[[nodiscard]] ExportFile exportToFile(const QueryCorePtr& node, ExportFormat format, ExportedResults which,
                                      const QString& name, const HomeFolder& home, FileStore& files,
                                      const std::atomic<bool>* cancelled = nullptr);

} // namespace quarry
