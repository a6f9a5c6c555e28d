#pragma once

#include <QLatin1String>
#include <QStringView>

namespace quarry {

/// Where the parts of an address stand in its text.
struct UrlParts {
    struct Range {
        qsizetype begin = 0;
        qsizetype length = 0;
    };
    Range scheme; ///< Without the ":".
    Range host;   ///< Without user and port; empty when host or port cannot be read.
    Range path;
    Range query; ///< Without the "?".
    bool isReadable = true;
};

/// One pass over the text, and no copy of it.
[[nodiscard]] UrlParts splitUrl(QStringView text);
/// The same for an address that is all ASCII.
[[nodiscard]] UrlParts splitUrl(QLatin1String text);

/// The host in the form in which names are looked up: escapes undone, in ASCII. Empty when that cannot be done.
[[nodiscard]] QByteArray asciiHost(QStringView host);

} // namespace quarry
