#pragma once

#include <QString>

namespace quarry {

/// Plain text of a fragment of HTML: normalised, line-breaking tags as spaces, everything before "<body" gone,
/// styles, scripts, links (with their text), comments and forms gone, all other tags removed, entities decoded,
/// trimmed. A tag ends at the first ">" outside double quotes; one left open stays.
[[nodiscard]] QString stringByRemovingHTML(const QString& text);

/// The text with its tags removed and XML's entities decoded. Links keep their text. A double quote in plain text
/// hides the next "<" until another double quote.
[[nodiscard]] QString stringByRemovingTagOnly(const QString& text);

/// Tabs and line ends as spaces, runs of spaces as one, none at the beginning. One may remain at the end.
[[nodiscard]] QString normalised(const QString& text);

/// What is shown as a result's description.
[[nodiscard]] QString summaryTextFromHTML(const QString& text);

/// What is shown as a page's title: the first line that is not blank.
[[nodiscard]] QString titleTextFromHTML(const QString& text);

} // namespace quarry
