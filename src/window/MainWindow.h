#pragma once

#include "archive/StringTable.h"
#include "platform/DistributedNotifications.h"
#include "platform/LoopWorker.h"
#include "platform/Workspace.h"
#include "session/LiveTree.h"
#include "session/RefreshRun.h"
#include "session/WindowMemory.h"
#include "session/WindowSchedule.h"
#include "window/FileImport.h"
#include "window/ResultEdits.h"
#include "window/TreeModel.h"
#include "window/TreeNodeEdits.h"
#include "window/UndoableEdits.h"
#include "window/WindowActions.h"

#include <QMainWindow>

class QLabel;
class QMenu;
class QSplitter;
class QStackedWidget;

namespace quarry {

class ChartsPane;
class DamagePane;
class DetailPane;
class FirstRun;
class HealthDialog;
class NodeTransfers;
class NoticeBar;
class RefreshBar;
class ResultsPane;
class SeenResults;
class TreePane;
class WelcomePane;

/// What the window is handed; everything must outlive it.
struct WindowParts {
    LiveTree::Parts tree;
    Workspace& workspace;
    DistributedNotifications& distributed;
    const StringTable& texts;
    QString updaterProgram;
    /// Lets the agent follow a schedule that the window has written; may be empty.
    std::function<void(bool automatic, qint64 minutes)> followSchedule = {};
};

/// The main application's window: the tree, the results, the selected result. Puts the panes, the actions and the
/// edits together; each of them decides its own matters.
class MainWindow final : public QMainWindow, private LiveTree::Listener {
    Q_OBJECT

public:
    explicit MainWindow(WindowParts parts);
    ~MainWindow() override;

    /// The end that nobody is asked about: a running copy of pages stops, what was handed over comes in, and everything
    /// is saved, while the window goes on. Then calls back; false when something could not be saved, tree().fault()
    /// says why.
    void finish(std::function<void(bool isSaved)> done);
    /// Also when it is about to close. The token is the desktop's permission to take the focus; may be empty.
    void bringToFront(const QString& activationToken);
    /// Imports the files, one after the other, once the database is loaded.
    void openFiles(const QStringList& files);

    [[nodiscard]] LiveTree& tree() { return _tree; }
    [[nodiscard]] WindowActions& actions() { return _actions; }
    [[nodiscard]] TreePane& treePane() { return *_treePane; }
    [[nodiscard]] ResultsPane& resultsPane() { return *_resultsPane; }

Q_SIGNALS:
    /// The user closed the window, and everything is saved, or what could not be is given up.
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // LiveTree::Listener
    void treeReplaced() override;
    void treeEdited(const QStringList& queries, bool structure) override;
    void safetyChanged(LiveTree::Safety safety, const QString& reason) override;

    void makePanes();
    void makePages();
    void makeMenus();
    void makeToolBar();
    void scopeKeys();
    void restoreLayout();
    [[nodiscard]] WindowLayout layoutNow() const;
    void rememberTree();
    void rememberLayout();
    void connectNodes();
    void connectResults();
    void connectRefresh();
    void connectPages();

    /// The node whose results are shown: the current one, else the whole tree.
    [[nodiscard]] QueryCorePtr shownNode() const;
    /// What commands are about: the selected nodes, else the whole tree.
    [[nodiscard]] QList<QueryCorePtr> chosenNodes() const;
    void showNode();
    void showResult();
    /// The panes, the welcome, or what is wrong with the database.
    void choosePage();
    void updateActions();
    /// Edits are saved first: the refresh goes by what is in the file. Where they cannot be, there is none.
    void startRefresh(const QStringList& nodes = {});
    [[nodiscard]] bool mayRefresh() const { return !_refresh.state().isRunning && !_isRefreshWaiting && !_leaving; }
    void addFirstQuery(const QString& words);
    void addFolder();
    void askForImport();
    void nextUnread();
    void openSelected();
    void copyAddresses();
    void popUp(const QList<QAction*>& actions, const QPoint& at, bool withRating = false);
    void addRatings(QMenu& menu);
    void showRefresh();
    void sayNextRefresh();
    void saySaveFault(LiveTree::Safety safety, const QString& reason);
    void showHealth();
    void sayTitle();
    /// Saves on other threads, the layout as well.
    void saveAll(std::function<void(bool isSaved)> done);
    void leave();
    void askWhetherToLeave();

    WindowParts _parts;
    WindowActions _actions;
    LiveTree _tree;
    UndoableEdits _edits;
    ResultEdits _resultEdits;
    TreeNodeEdits _nodeEdits;
    FileImport _import;
    TreeModel _treeModel;
    RefreshRun _refresh;
    WindowSchedule _schedule;
    WindowMemory _memory;
    WindowLayout _remembered;
    bool _isTreeShown = false; ///< The first tree came from the file.
    bool _isWholeRefresh = false;
    bool _isRefreshWaiting = false; ///< For a save.
    std::shared_ptr<int> _leaving;  ///< While it saves after it was closed; another one each time.
    bool _isScheduleKept = false;
    QString _saveFault; ///< What was said of a save that failed, until one succeeds.
    TreePane* _treePane = nullptr;
    ResultsPane* _resultsPane = nullptr;
    SeenResults* _seen = nullptr;
    DetailPane* _detailPane = nullptr;
    ChartsPane* _charts = nullptr;
    HealthDialog* _health = nullptr; ///< Made when it is first wanted.
    RefreshBar* _refreshBar = nullptr;
    QSplitter* _treeSplitter = nullptr;
    QSplitter* _detailSplitter = nullptr;
    QStackedWidget* _pages = nullptr;
    WelcomePane* _welcome = nullptr;
    FirstRun* _firstRun = nullptr;
    DamagePane* _damage = nullptr;
    NodeTransfers* _transfers = nullptr;
    NoticeBar* _notice = nullptr;
    QLabel* _nextRefresh = nullptr;
    QLabel* _safety = nullptr;
    LoopWorker _layoutWriter; ///< Waits for the lock of those who write settings.
};

} // namespace quarry
