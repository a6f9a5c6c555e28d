#pragma once

namespace quarry {

/// The operating system's version, major×10000 + minor×100 + patch (12.4.1 is 120401), from the system's release file;
/// never less than 101500.
[[nodiscard]] int operatingSystemVersion();

} // namespace quarry
