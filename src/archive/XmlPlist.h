#pragma once

#include <QByteArray>
#include <QString>

namespace quarry {

/// The binary form of an XML property list, made in one pass without a tree, so that one reader serves both. A
/// dictionary whose only key is "CF$UID" becomes a UID. Empty, and a reason, for anything else.
[[nodiscard]] QByteArray binaryFromXml(const QByteArray& xml, QString& reason);

} // namespace quarry
