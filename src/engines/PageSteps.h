#pragma once

#include "engines/ResultMerge.h"
#include "engines/ResultPageLoaders.h"
#include "platform/Pauser.h"

namespace quarry {

// Steps of an update that read the pages behind results. They block; when the program is asked to stop they end before
// the next page, and what they return then is good for nothing.

/// Keeps the records whose page holds the text, letter case counted, and gives each the part of the page around it.
/// Known links, those that the shared blacklist accepts, files that are no pages and pages that cannot be read are
/// dropped. Waits a moment before each page.
[[nodiscard]] ResultList restrictResults(const QueryFields& query, const ResultList& records, const QString& text,
                                         ResultPageLoaders& loaders, Pauser& pauser, const MergeHooks& hooks);

/// Gives each record the digest of its page's text. One whose page cannot be read keeps what it has.
[[nodiscard]] ResultList refreshChecksumOfItems(const ResultList& records, ResultPageLoaders& loaders,
                                                const Pauser& pauser);

} // namespace quarry
