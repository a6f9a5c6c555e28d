#pragma once

#include "agent/StatusItem.h"
#include "agent/TickDecision.h"
#include "archive/StringTable.h"

#include <QString>

#include <map>
#include <optional>

namespace quarry {

/// The looks of the menu's fixed items. The status item hears of changes only: a menu that is set anew each second
/// closes under the user's pointer where the desktop draws it.
class MenuItems final {
public:
    /// Both must outlive the object.
    MenuItems(StatusItem& item, const StringTable& texts) : _item(item), _texts(texts) {}

    void enableAll();
    void show(MenuState state, double secondsToLaunch);

private:
    struct Looks {
        std::optional<QString> title;
        std::optional<bool> enabled;
    };
    void setTitle(StatusItem::Tag tag, const QString& title);
    void setEnabled(StatusItem::Tag tag, bool enabled);

    StatusItem& _item;
    const StringTable& _texts;
    std::map<StatusItem::Tag, Looks> _looks;
};

} // namespace quarry
