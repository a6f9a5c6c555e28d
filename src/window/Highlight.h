#pragma once

#include <QString>
#include <QStringList>

namespace quarry {

/// The words of a highlight text, quotes and signs of search languages taken off; those of one letter are left out.
[[nodiscard]] QStringList highlightWords(const QString& text);

/// The text as HTML with every occurrence of the words marked, ignoring case. Nothing in the text is markup.
[[nodiscard]] QString highlighted(const QString& text, const QStringList& words);

} // namespace quarry
