#pragma once

#include <QString>

namespace quarry {

/// One step of the maker's: what went wrong, or what is to be printed.
struct ReleaseResult {
    QString fault;  ///< One line for a person; empty on success.
    QString report; ///< Lines for standard output.
};

/// Makes a signing key in a new file that only its owner may read, and reports the public key that goes into the build.
[[nodiscard]] ReleaseResult makeKey(const QString& keyFile);

struct ReleaseOrder {
    QString bundle;   ///< "…/QuarrySpotter.app", as installed.
    QString keyFile;  ///< Empty: the image is not signed.
    QString folder;   ///< Where the files go.
    QString page;     ///< The product's web page.
    QString imageUrl; ///< The address of that folder, where the files will be served from.
    int minimumOs = 0;
};

/// Builds the disk image of a bundle, signs it, and writes what the update script answers.
[[nodiscard]] ReleaseResult makeRelease(const ReleaseOrder& order);

} // namespace quarry
