#pragma once

#include "platform/PageLoader.h"
#include "text/Url.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quarry {

/// Release notes as a window shows them: paragraphs with bold and italic text, everything else left out, so that
/// nothing in them is ever loaded or can be clicked. The notes are RTF; anything else counts as text or a page, whose
/// tags are left out.
[[nodiscard]] QString releaseNotesHtml(const QByteArray& document);

/// Fetches the notes and returns them as HTML; none when they cannot be had or say nothing. Blocks.
[[nodiscard]] std::optional<QString> fetchReleaseNotes(PageLoader& loader, const Url& address);

} // namespace quarry
