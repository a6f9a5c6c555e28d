#pragma once

#include <QByteArray>
#include <QString>

namespace quarry {

/// Writes a "SearchServices.plist" that sends all five services to that host and port; replaces the file whole.
/// Returns one line for a person when it cannot, empty when it could.
[[nodiscard]] QString writeServicesFile(const QString& file, const QByteArray& host, int port);

} // namespace quarry
