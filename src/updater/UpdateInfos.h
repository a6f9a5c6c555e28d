#pragma once

#include "text/Url.h"

#include <QString>

namespace quarry {

/// What the maker's script last answered: which version is current and where it is. A plain value.
struct UpdateInfos {
    QString curentVersion; ///< For example "1.2.5", or "1.3b100604" with a beta part. Empty when missing.
    QString osMini; ///< The operating system's version it needs at least, as a decimal number. Empty when missing.
    Url productDownloadUrl; ///< The product's web page.
    Url fileUrl;            ///< The disk image.

    friend bool operator==(const UpdateInfos&, const UpdateInfos&) = default;
};

} // namespace quarry
