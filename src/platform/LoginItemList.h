#pragma once

#include <QList>
#include <QString>

namespace quarry {

/// The list of programs that the desktop starts when the user logs in. Main thread only.
class LoginItemList {
public:
    struct Item {
        QString displayName;         ///< As the desktop shows it.
        QString path;                ///< The bundle it starts; empty when it does not resolve to a path.
        bool disabledByUser = false; ///< Switched off in the desktop's settings: it is there, and is left alone.
        QString identifier;          ///< Names the item for remove().
    };

    virtual ~LoginItemList() = default;
    [[nodiscard]] virtual QList<Item> items() = 0;
    /// Adds a bundle at the end of the list; false when that failed.
    virtual bool append(const QString& bundlePath) = 0;
    virtual bool remove(const Item& item) = 0;
};

} // namespace quarry
