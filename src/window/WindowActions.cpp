#include "window/WindowActions.h"

#include "text/LocalisedFormat.h"

#include <QApplication>
#include <QIcon>
#include <QLocale>
#include <QStyle>

namespace quarry {

QString starsText(const StringTable& texts, int stars)
{
    if (stars == 0)
        return texts.text(QStringLiteral("203_No rating"));
    return filledFormat(texts.text(stars == 1 ? QStringLiteral("203_One star") : QStringLiteral("203_Stars")),
                        {QLocale().toString(stars)});
}

WindowActions::WindowActions(const StringTable& texts, QObject* parent) : QObject(parent), _texts(texts)
{
    newQuery = make(u"203_New query", {QKeySequence::New});
    newAdvancedQuery = make(u"203_New advanced query", {Qt::CTRL | Qt::SHIFT | Qt::Key_N});
    newCombinedQuery = make(u"203_New combined query");
    newFolder = make(u"203_New folder", {Qt::CTRL | Qt::ALT | Qt::Key_N});
    editQuery = make(u"203_Edit query", {Qt::CTRL | Qt::Key_E});
    renameNode = make(u"203_Rename", {Qt::Key_F2});
    moveUp = make(u"203_Move up", {Qt::ALT | Qt::Key_Up});
    moveDown = make(u"203_Move down", {Qt::ALT | Qt::Key_Down});
    moveToFolder = make(u"203_Move to folder");
    removeNode = make(u"203_Remove", {QKeySequence::Delete, Qt::CTRL | Qt::Key_Backspace});
    enabled = make(u"203_Enabled");
    checkBlacklist = make(u"203_Check blacklist");
    computeChecksum = make(u"203_Compute digests");
    for (QAction* action : {enabled, checkBlacklist, computeChecksum})
        action->setCheckable(true);
    queryFilters = make(u"203_Query filters");
    for (QAction*& line : _lines) {
        line = new QAction(this);
        line->setSeparator(true);
    }
    importFile = make(u"203_Import", {Qt::CTRL | Qt::Key_O});
    exportNode = make(u"203_Export", {Qt::CTRL | Qt::Key_S});
    offlineCopy = make(u"203_Offline copy");

    refreshAll = make(u"203_Refresh all", {QKeySequence::Refresh, Qt::CTRL | Qt::Key_R});
    refreshSelected = make(u"203_Refresh selected", {Qt::CTRL | Qt::SHIFT | Qt::Key_R});
    stopRefresh = make(u"203_Stop refresh", {Qt::CTRL | Qt::Key_Period});
    serviceHealth = make(u"203_Service health");

    openResult = make(u"203_Open result", {Qt::Key_Return, Qt::Key_Enter});
    nextUnread = make(u"203_Next unread", {Qt::Key_N, Qt::Key_Space});
    markRead = make(u"203_Mark read", {Qt::Key_M});
    markUnread = make(u"203_Mark unread", {Qt::Key_U});
    markAllRead = make(u"203_Mark all read", {Qt::CTRL | Qt::SHIFT | Qt::Key_M});
    hideResult = make(u"203_Hide", {Qt::Key_H, QKeySequence::Delete});
    showAgain = make(u"203_Show again", {Qt::Key_H});
    excludeHost = make(u"203_Exclude host", {Qt::Key_X});
    blacklistAddress = make(u"203_Blacklist address", {Qt::Key_B});
    copyAddress = make(u"203_Copy address", {QKeySequence::Copy});
    for (int stars = 0; stars <= MostStars; ++stars) {
        QAction* const action = make(u"203_Rate", {QKeySequence(Qt::Key_0 + stars)});
        action->setText(starsText(_texts, stars));
        action->setData(stars);
        rate.at(static_cast<std::size_t>(stars)) = action;
    }

    search = make(u"203_Search", {QKeySequence::Find, Qt::Key_Slash});
    blacklistEditor = make(u"203_Blacklist editor", {Qt::CTRL | Qt::Key_B});
    charts = make(u"203_Charts", {Qt::CTRL | Qt::Key_G});
    charts->setCheckable(true);
    preferences = make(u"203_Preferences", {Qt::CTRL | Qt::Key_Comma});
    checkForUpdates = make(u"203_Check for updates");
    quit = make(u"203_Quit", {QKeySequence::Quit});
    addIcons();
    addShortTexts();
}

/// What buttons say: a row of them is to fit beside the tree in every language.
void WindowActions::addShortTexts()
{
    openResult->setIconText(_texts.text(QStringLiteral("204_Open")));
    markRead->setIconText(_texts.text(QStringLiteral("204_Read")));
    markUnread->setIconText(_texts.text(QStringLiteral("204_Unread")));
    excludeHost->setIconText(_texts.text(QStringLiteral("204_Exclude")));
    blacklistAddress->setIconText(_texts.text(QStringLiteral("204_Blacklist")));
}

void WindowActions::addIcons()
{
    struct Picture {
        QAction* action;
        const char16_t* name; ///< In the desktop's icon theme.
        QStyle::StandardPixmap otherwise;
    };
    const Picture pictures[] = {{newQuery, u"list-add", QStyle::SP_FileIcon},
                                {newFolder, u"folder-new", QStyle::SP_FileDialogNewFolder},
                                {refreshAll, u"view-refresh", QStyle::SP_BrowserReload},
                                {stopRefresh, u"process-stop", QStyle::SP_BrowserStop},
                                {nextUnread, u"go-down", QStyle::SP_ArrowDown},
                                {markAllRead, u"mail-mark-read", QStyle::SP_DialogApplyButton}};
    for (const Picture& picture : pictures)
        picture.action->setIcon(
            QIcon::fromTheme(QString::fromUtf16(picture.name), QApplication::style()->standardIcon(picture.otherwise)));
}

QAction* WindowActions::make(const char16_t* key, const QList<QKeySequence>& keys)
{
    auto* const action = new QAction(_texts.text(QString::fromUtf16(key)), this);
    action->setObjectName(QString::fromUtf16(key).mid(4));
    action->setShortcuts(keys);
    return action;
}

QList<QAction*> WindowActions::ofNodes() const
{
    return {refreshSelected, markAllRead,    _lines[0],       editQuery,   queryFilters, renameNode,
            enabled,         checkBlacklist, computeChecksum, _lines[1],   moveUp,       moveDown,
            moveToFolder,    _lines[2],      exportNode,      offlineCopy, removeNode};
}

QList<QAction*> WindowActions::ofResults() const
{
    return {openResult, markRead, markUnread, hideResult, showAgain, excludeHost, blacklistAddress, copyAddress};
}

} // namespace quarry
