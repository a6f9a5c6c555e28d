#pragma once

#include <QByteArray>

#include <string>
#include <vector>

namespace quarry {

/// Texts one of which stands in everything that a POSIX extended expression matches: whoever holds none of them need
/// not ask the expression. They are ASCII and not empty, in lower case when case is ignored (for subjects that are
/// ASCII throughout, in lower case too). Of several such sets, one that few addresses will hold.
///
/// Empty when there is no such set or the pattern is beyond this reader; the expression must then be asked. The
/// pattern must be one that compiles.
[[nodiscard]] std::vector<std::string> requiredTexts(const QByteArray& pattern, bool ignoreCase);

} // namespace quarry
