#pragma once

#include "model/ResultRecord.h"

#include <QString>

namespace quarry {

/// The records whose address text the POSIX extended expression matches, in order. Throws CSRegexException when the
/// expression does not compile, whatever the records are. Safe on any thread.
[[nodiscard]] ResultList filterByUrl(const ResultList& records, const QString& pattern);

} // namespace quarry
