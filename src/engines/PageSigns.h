#pragma once

#include "engines/PageFacts.h"

#include <QStringView>

namespace quarry {

// What pages without results say, told by phrases and markers that services use. The tables stand in PageSigns.cpp.
// Line ends, blanks and letter case make no difference. A marker that the address of the page holds itself counts for
// nothing: pages repeat what was searched for. Of a huge page only the beginning is looked at. Reentrant.

/// Of a page that gave no results; its text, ready for scanning or as it came.
[[nodiscard]] PageSign signOfPage(QStringView page, const QString& address);

/// Of the text that came with an error status: a challenge, or nothing.
[[nodiscard]] PageSign signOfRefusal(QStringView page, const QString& address);

} // namespace quarry
