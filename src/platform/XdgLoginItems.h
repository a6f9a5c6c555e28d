#pragma once

#include "platform/LoginItemList.h"

namespace quarry {

/// The autostart entries of the user's configuration folder. Nothing is kept between calls: the desktop's settings
/// change the same folder. An entry that the user switched off there is neither removed nor written over, and what
/// others have put there is only read.
class XdgLoginItems final : public LoginItemList {
public:
    /// The user's own: "autostart" in $XDG_CONFIG_HOME, or in ".config" of the home folder.
    XdgLoginItems();
    explicit XdgLoginItems(QString autostartFolder);

    [[nodiscard]] QList<Item> items() override;
    bool append(const QString& bundlePath) override;
    bool remove(const Item& item) override;

private:
    QString _folder;
};

} // namespace quarry
