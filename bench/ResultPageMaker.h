#pragma once

#include "engines/SearchService.h"

#include <QByteArray>

namespace quarry::bench {

/// A result page of that service, of about that many bytes, in UTF-8. The same every time.
///
/// Made up as result pages are: of every 4.5 KB one result takes 1.2 KB (nested divs, attributes, entities, words in
/// bold, a table, a line break hint in the shown address), inline script 1.5 KB, and advertisements and related
/// searches the rest (nested divs, lists, links with long addresses, a comment). A tag begins every 29 characters, and
/// one word in thirty is not ASCII. A larger page has more of everything: 13 results at 60 KB, 223 at 1 MB.
[[nodiscard]] QByteArray makeResultPage(SearchService service, qsizetype size);

} // namespace quarry::bench
