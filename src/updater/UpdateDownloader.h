#pragma once

#include "platform/CurlPageLoader.h"
#include "updater/UpdaterParts.h"

#include <memory>

namespace quarry {

/// The requests of a download: small pages as for a check, and an image handed over piece by piece.
class UpdateDownloader : public UpdateLoader {
public:
    [[nodiscard]] virtual LoadedPage download(const QByteArray& address, ReplyReceiver& receiver) = 0;
};

/// The real one: trusted addresses only, redirects included; ended by a minute without data, half a day, or more than
/// 1 GiB.
[[nodiscard]] std::shared_ptr<UpdateDownloader> makeUpdateDownloader();

/// With other bounds (tests).
[[nodiscard]] std::shared_ptr<UpdateDownloader> makeUpdateDownloader(const CurlPageLoader::Limits& limits);

} // namespace quarry
