#pragma once

#include <QString>

namespace quarry {

// The steps of stringByRemovingHTML and stringByRemovingTagOnly that deal with tags. The tag scanner drops every tag
// from its "<" to the first ">" that is not inside double quotes; a tag left open stays.

/// Of a normalised text: line-breaking tags and "&nbsp;" as spaces, what stands before "<body" cut off, styles,
/// scripts, links, comments and forms removed, then the tag scanner, for which quotes count inside tags.
[[nodiscard]] QString scanHtmlStepByStep(const QString& normalisedText);

/// Normalises and does the same in one pass over a text that holds no "<body" and none of the removed elements;
/// false, and nothing done, for any other.
[[nodiscard]] bool scanHtmlInOnePass(const QString& text, QString& plain);

/// Line-breaking tags (in lower case) as spaces, then the tag scanner, for which quotes count everywhere.
[[nodiscard]] QString scanTagsOnly(const QString& text);

} // namespace quarry
