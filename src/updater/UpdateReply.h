#pragma once

#include "archive/StringTable.h"
#include "platform/PageLoader.h"
#include "updater/ProductInfo.h"
#include "updater/UpdateInfos.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quarry {

/// What the script is told: "OS|version|reference|LOG" or "…|NOLOG".
[[nodiscard]] QString updateRequestPayload(const ProductInfo& product, const QString& productReference, bool logging);

/// Asks the script and returns its answer inflated; blocks. When the answer is no zlib stream, or one of more than
/// 64 KiB, it is asked for again in plain text. None when nothing came.
[[nodiscard]] std::optional<QByteArray> fetchUpdateReply(PageLoader& loader, const Url& request);

/// Reads "version;minimum OS;product page;disk image". The table's own addresses, where it has them, take the place of
/// the last two. None for a reply that is empty or has too few fields.
[[nodiscard]] std::optional<UpdateInfos> readUpdateReply(const QByteArray& reply, const StringTable& texts);

} // namespace quarry
