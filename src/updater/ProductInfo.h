#pragma once

#include "text/Url.h"

#include <QByteArray>
#include <QString>

namespace quarry {

/// What the running program's Info.plist says about itself and its updates. A plain value.
struct ProductInfo {
    QString version;    ///< "CFBundleVersion".
    QString bundlePath; ///< "…/QuarrySpotter.app": what an update replaces.
    int osVersion = 0;  ///< As operatingSystemVersion() tells it.
    /// "QSUpdateScriptURL": the maker's update script. Empty: no check is ever made.
    Url scriptUrl;
    /// "QSUpdatePublicKey": the maker's Ed25519 key, 32 bytes, base64 in the file. With it an image is installed only
    /// when its signature verifies.
    QByteArray publicKey;
    /// The file names a key, so that images must be signed. With a key that cannot be read none verifies.
    bool needsSignature = false;
    /// "QSUpdatesComeFromSystem": the system's package manager installed the product and updates it. No check is ever
    /// made.
    bool updatesComeFromSystem = false;

    /// Whether the product looks for updates itself.
    [[nodiscard]] bool checksForUpdates() const { return !updatesComeFromSystem && !scriptUrl.isEmpty(); }
};

/// Reads "Contents/Info.plist" of the bundle at that path, which may be missing: then nothing but the path and the
/// system's version is known.
[[nodiscard]] ProductInfo productInfoOfBundle(const QString& bundlePath);

} // namespace quarry
