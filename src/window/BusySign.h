#pragma once

#include "archive/StringTable.h"

class QProgressDialog;
class QWidget;

namespace quarry {

/// Makes a dialog that says what is going on and has a "Stop": it shows after half a second, while the window goes on.
/// It belongs to `window`; whoever made it deletes it when it is over.
[[nodiscard]] QProgressDialog* makeBusySign(const QString& title, const QString& text, const StringTable& texts,
                                            QWidget* window);

} // namespace quarry
