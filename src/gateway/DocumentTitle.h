#pragma once

#include "gateway/Document.h"

#include <QByteArray>

namespace quarry {

/// The title of a document whose kind and text are set: of HTML its title element; else the first heading, or the
/// first line that reads like one; else the name of its file and folder. The path is without ".gz".
[[nodiscard]] QByteArray documentTitle(const Document& document, const QByteArray& path);

} // namespace quarry
