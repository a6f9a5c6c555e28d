#pragma once

#include "platform/PageLoader.h"
#include "text/PageDecoding.h"
#include "text/Url.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quarry {

// Web pages as text. All of these block until the page has arrived; none uses a cache. Safe on several threads at once
// as far as the loader is. An unknown charset is a line in the system log and never an error.

/// The page in that encoding. Empty for no address and when nothing arrived; none when the bytes are not of the
/// encoding.
[[nodiscard]] std::optional<QString> stringWithContentsNotCachedOfURL(PageLoader& loader, const Url& address,
                                                                      EncodingNumber encoding);

/// The page as one line of plain text. Its bytes alone tell the encoding: a charset that the page declares is looked
/// up and logged where it is unknown, but does not decide. None when the page cannot be had or its bytes do not tell.
[[nodiscard]] std::optional<QString> cleanStringWithContentsOfURL(PageLoader& loader, const Url& address);

/// The same in another way: where the page does not tell by itself, the charset that it declares decides, and the page
/// is loaded once more for it.
[[nodiscard]] std::optional<QString> cleanStringWithContentsOfURL2(PageLoader& loader, const Url& address);

/// The page's text as it is: by its bytes, or else by the charset that it was sent with. None when the page cannot be
/// had or neither tells.
[[nodiscard]] std::optional<DecodedPage> stringWithContentsOfURL(PageLoader& loader, const Url& address);

} // namespace quarry
