#pragma once

#include "text/Url.h"

#include <QByteArray>

namespace quarry {

/// Whether updates may come from an address: HTTPS from anywhere, plain HTTP from the machine itself only.
[[nodiscard]] bool isTrustedUpdateAddress(const Url& address);

/// Plain HTTP on the machine itself, which must not lead away from it.
[[nodiscard]] bool isLoopbackAddress(const Url& address);

/// Whether an IP address, as text without brackets, is the machine's own.
[[nodiscard]] bool isLoopbackIp(const QByteArray& ip);

} // namespace quarry
