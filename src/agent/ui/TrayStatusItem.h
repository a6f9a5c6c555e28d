#pragma once

#include "agent/StatusItem.h"
#include "agent/ui/TrayWatch.h"
#include "archive/StringTable.h"

#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>

#include <chrono>
#include <map>
#include <memory>

class QAction;

namespace quarry {

class InfoMenuView;

/// The status item in the system tray, with its menu: open the application, refresh now, quit, in this order, then the
/// info item. Titles come from the texts "100_Open menu string" and "100_Quit menu string"; that of the second item is
/// set from outside. Where we pop the menu up ourselves, the info item is an InfoMenuView; a menu that the desktop
/// draws holds its rows as plain items.
///
/// A tray that appears late is waited for, one that restarts gets the icon again.
class TrayStatusItem final : public StatusItem {
public:
    /// How long a desktop may take at login before it counts as one without a tray.
    static constexpr std::chrono::seconds Patience{30};

    /// `reportNoTray` is called once when no tray came within the patience; the item goes on waiting.
    TrayStatusItem(const StringTable& texts, const QString& resourcesFolder, std::function<void()> reportNoTray = {},
                   std::chrono::milliseconds patience = Patience);
    ~TrayStatusItem() override;
    TrayStatusItem(const TrayStatusItem&) = delete;
    TrayStatusItem& operator=(const TrayStatusItem&) = delete;

    void show() override;
    void setIcon(Icon icon) override;
    void setTitle(Tag item, const QString& title) override;
    void setEnabled(Tag item, bool enabled) override;
    void setInfo(const InfoText& text) override;
    void removeInfo() override;
    void setActionHandler(std::function<void(Tag)> handler) override { _handler = std::move(handler); }

    [[nodiscard]] bool isInTray() const { return _tray != nullptr; }
    /// The menu as we pop it up ourselves.
    [[nodiscard]] QMenu& menu() { return _menu; }

private:
    void addItem(Tag item, const QString& title);
    [[nodiscard]] QAction& action(Tag item) const;
    [[nodiscard]] const QIcon& picture() const;
    void trayFound(TrayWatch::Kind kind);
    void clicked();
    void addInfoRows();
    void updateToolTip();

    QIcon _plain;
    QIcon _highlighted;
    Icon _icon = Icon::Plain;
    std::function<void(Tag)> _handler;
    std::function<void()> _reportNoTray;
    std::chrono::milliseconds _patience;

    TrayWatch _watch;
    QMenu _menu;
    std::map<Tag, QAction*> _items;
    QString _info;                        ///< Empty without the info item.
    std::unique_ptr<QAction> _infoAction; ///< Of the menu that we pop up.
    /// The menu that the desktop draws, if it does, and the info item's rows in it.
    std::unique_ptr<QMenu> _exported;
    std::vector<std::unique_ptr<QAction>> _infoRows;
    std::unique_ptr<QSystemTrayIcon> _tray;
};

} // namespace quarry
