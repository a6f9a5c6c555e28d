#pragma once

#include <QStringView>

namespace quarry {

/// The integer that a text begins with, after blanks and a sign; what follows its digits does not count ("5b3" is 5).
/// 0 when there is none; the largest or smallest number when it is too great.
[[nodiscard]] qint64 integerValue(QStringView text);

} // namespace quarry
