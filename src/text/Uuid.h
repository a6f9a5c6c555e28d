#pragma once

#include <QString>

namespace quarry {

/// A newly created UUID in canonical form: 8-4-4-4-12 upper-case hexadecimal digits.
[[nodiscard]] QString UUIDString();

} // namespace quarry
