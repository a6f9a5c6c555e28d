#pragma once

#include "archive/StringTable.h"

class QWidget;

namespace quarry {

/// The layout of the window holds keys where texts are shown: puts the texts there.
void localiseForm(QWidget& window, const StringTable& texts);

/// A rule's kind in words; empty for a type that is none.
[[nodiscard]] QString kindName(qint64 type, const StringTable& texts);

} // namespace quarry
