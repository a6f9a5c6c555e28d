#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace quarry {

/// "HOST", "HOST:PORT", "[IPV6]:PORT": the host alone, in lower case, brackets kept; empty when that is no host.
[[nodiscard]] QByteArray hostOf(const QByteArray& hostAndPort);
/// A host that means this machine and cannot be reached from outside: 127.x.x.x, localhost, [::1].
[[nodiscard]] bool isLoopbackHost(const QByteArray& host);
/// The path below the documents' root that a site restriction names: "HOST/doc/PATH" with the gateway's own host,
/// with or without scheme and port, or just "PATH". Another host's name stays as it is, a path that no document has.
[[nodiscard]] QByteArray placeOf(const QString& site, const QByteArray& ownHost);

} // namespace quarry
