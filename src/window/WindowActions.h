#pragma once

#include "archive/StringTable.h"

#include <QAction>
#include <QList>
#include <QObject>

#include <array>

namespace quarry {

/// "3 stars"; "No rating" for 0.
[[nodiscard]] QString starsText(const StringTable& texts, int stars);

/// Every command of the window, once: menus, context menus, buttons and keys are the same actions.
class WindowActions final : public QObject {
    Q_OBJECT

public:
    static constexpr int MostStars = 5;

    WindowActions(const StringTable& texts, QObject* parent);

    // Queries
    QAction* newQuery;
    QAction* newAdvancedQuery;
    QAction* newCombinedQuery;
    QAction* newFolder;
    QAction* editQuery;
    QAction* renameNode;
    QAction* moveUp;
    QAction* moveDown;
    QAction* moveToFolder;
    QAction* removeNode;
    QAction* enabled;         ///< Checkable.
    QAction* checkBlacklist;  ///< Checkable.
    QAction* computeChecksum; ///< Checkable.
    QAction* queryFilters;
    QAction* importFile;
    QAction* exportNode;
    QAction* offlineCopy;

    // Refreshing
    QAction* refreshAll;
    QAction* refreshSelected;
    QAction* stopRefresh;
    QAction* serviceHealth;

    // Results
    QAction* openResult;
    QAction* nextUnread;
    QAction* markRead;
    QAction* markUnread;
    QAction* markAllRead;
    QAction* hideResult;
    QAction* showAgain; ///< For hidden results; takes the place and the key of hideResult.
    QAction* excludeHost;
    QAction* blacklistAddress;
    QAction* copyAddress;
    /// No stars to five stars.
    std::array<QAction*, MostStars + 1> rate;

    // Window
    QAction* search;
    QAction* blacklistEditor;
    QAction* charts;
    QAction* preferences;
    QAction* checkForUpdates;
    QAction* quit;

    /// With lines between them.
    [[nodiscard]] QList<QAction*> ofNodes() const;
    [[nodiscard]] QList<QAction*> ofResults() const;

private:
    void addIcons();
    void addShortTexts();
    [[nodiscard]] QAction* make(const char16_t* key, const QList<QKeySequence>& keys = {});

    const StringTable& _texts;
    std::array<QAction*, 3> _lines;
};

} // namespace quarry
