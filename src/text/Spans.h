#pragma once

#include <QString>
#include <QStringView>

namespace quarry {

/// Removes every span from `begin` to the next `end`, both included, ignoring case. The end is searched from the
/// first character of the begin, so "<!-->" is one whole comment. After a removal the search starts again at the
/// text's start, so markers that a removal joins count too; this takes one pass all the same. A begin without end
/// stops the removal. Nothing happens when a marker is empty.
void removeHTMLTagBeginingWith(QString& text, QStringView begin, QStringView endingTag);

/// The same with markers that are in folded form already.
void removeFoldedSpans(QString& text, QStringView foldedBegin, QStringView foldedEnd);

/// Replaces every occurrence of a text by another, literally, in one pass. Nothing happens when `a` is empty.
void replaceString(QString& text, const QString& a, const QString& withString);

} // namespace quarry
