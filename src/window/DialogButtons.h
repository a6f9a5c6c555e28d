#pragma once

#include "archive/StringTable.h"

class QDialog;
class QDialogButtonBox;

namespace quarry {

/// OK and Cancel in the window's language, which Qt's own texts may not be installed for. They accept and reject the
/// dialog, which owns them.
[[nodiscard]] QDialogButtonBox* okAndCancel(const StringTable& texts, QDialog* dialog);

} // namespace quarry
