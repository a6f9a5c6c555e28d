// How the main window is put together, and how it comes back as it was left.

#include "platform/SystemLog.h"
#include "window/ChartsPane.h"
#include "window/DamagePane.h"
#include "window/DetailPane.h"
#include "window/FirstRun.h"
#include "window/MainWindow.h"
#include "window/NoticeBar.h"
#include "window/RefreshBar.h"
#include "window/ResultsPane.h"
#include "window/TreePane.h"
#include "window/WelcomePane.h"

#include <QLabel>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTableView>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

namespace quarry {

namespace {

constexpr QSize UsualSize(1100, 720);
constexpr int UsualTreeWidth = 260;

} // namespace

void MainWindow::makePanes()
{
    _treePane = new TreePane(_treeModel, _parts.texts, this);
    _resultsPane = new ResultsPane(_parts.tree.timers, _parts.texts, this);
    _detailPane = new DetailPane(_actions, _parts.texts, this);
    _detailSplitter = new QSplitter(Qt::Vertical);
    _detailSplitter->addWidget(_resultsPane);
    _detailSplitter->addWidget(_detailPane);
    _detailSplitter->setStretchFactor(0, 3);
    _detailSplitter->setStretchFactor(1, 2);
    _detailSplitter->setChildrenCollapsible(false);
    _treeSplitter = new QSplitter(Qt::Horizontal);
    _treeSplitter->addWidget(_treePane);
    _treeSplitter->addWidget(_detailSplitter);
    _treeSplitter->setStretchFactor(0, 0);
    _treeSplitter->setStretchFactor(1, 1);
    _treeSplitter->setChildrenCollapsible(false);
    // The frame around it takes room, too.
    resize(UsualSize.boundedTo(screen()->availableSize() * 0.94));
    _treeSplitter->setSizes({UsualTreeWidth, width() - UsualTreeWidth});

    _charts = new ChartsPane(_parts.tree.timers, _parts.tree.clock, _parts.texts, this);
    addDockWidget(Qt::BottomDockWidgetArea, _charts);
    _charts->hide();
    connect(_actions.charts, &QAction::toggled, _charts, &QWidget::setVisible);
    connect(_charts->toggleViewAction(), &QAction::toggled, _actions.charts, &QAction::setChecked);

    _refreshBar = new RefreshBar(_parts.texts, _actions.stopRefresh, _actions.serviceHealth, this);
    _nextRefresh = new QLabel(this);
    _safety = new QLabel(this);
    statusBar()->addWidget(_refreshBar, 1);
    statusBar()->addPermanentWidget(_nextRefresh);
    statusBar()->addPermanentWidget(_safety);
}

void MainWindow::makePages()
{
    _welcome = new WelcomePane(_parts.texts, this);
    _firstRun = new FirstRun({_parts.tree.home, _parts.tree.clock, _parts.tree.files, _parts.tree.timers, _parts.texts,
                              _parts.followSchedule},
                             *_welcome);
    _firstRun->setParent(this);
    _damage = new DamagePane(_parts.texts, this);
    _pages = new QStackedWidget(this);
    _pages->addWidget(_treeSplitter);
    _pages->addWidget(_welcome);
    _pages->addWidget(_damage);
    _notice = new NoticeBar(_parts.texts, this);
    auto* const central = new QWidget(this);
    auto* const column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(_notice);
    column->addWidget(_pages, 1);
    setCentralWidget(central);
}

/// Keys without Ctrl belong to the lists: everywhere else they are typed, or press a button. What copies selected text
/// elsewhere copies addresses in the list of results.
void MainWindow::scopeKeys()
{
    const auto scope = [](const QList<QAction*>& actions, const QList<QWidget*>& widgets) {
        for (QAction* const action : actions) {
            action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
            for (QWidget* const widget : widgets)
                widget->addAction(action);
        }
    };
    QList<QAction*> ofResults = {_actions.markRead,  _actions.markUnread,  _actions.hideResult,
                                 _actions.showAgain, _actions.excludeHost, _actions.blacklistAddress};
    ofResults.append(QList<QAction*>(_actions.rate.begin(), _actions.rate.end()));
    scope(ofResults, {&_resultsPane->list(), _detailPane});
    scope({_actions.nextUnread}, {&_resultsPane->list(), &_detailPane->text(), _treePane});
    scope({_actions.openResult, _actions.copyAddress}, {&_resultsPane->list()});
    scope({_actions.removeNode, _actions.moveUp, _actions.moveDown}, {_treePane});
}

void MainWindow::makeMenus()
{
    const auto menu = [this](const char16_t* key, const QList<QAction*>& actions) {
        QMenu* const made = menuBar()->addMenu(_parts.texts.text(QString::fromUtf16(key)));
        made->addActions(actions);
        // A menu does not take the focus from the title that is being typed.
        connect(made, &QMenu::aboutToShow, _treePane, &TreePane::finishEditing);
        return made;
    };
    QMenu* const file = menu(u"200_Menu file", {_actions.newQuery, _actions.newAdvancedQuery, _actions.newCombinedQuery,
                                                _actions.newFolder});
    file->addSeparator();
    file->addActions({_actions.importFile, _actions.exportNode, _actions.offlineCopy});
    file->addSeparator();
    file->addActions({_actions.preferences, _actions.quit});

    QAction* const undo = _edits.stack().createUndoAction(this, _parts.texts.text(QStringLiteral("200_Undo")));
    QAction* const redo = _edits.stack().createRedoAction(this, _parts.texts.text(QStringLiteral("200_Redo")));
    undo->setShortcuts(QKeySequence::Undo);
    redo->setShortcuts(QKeySequence::Redo);
    QMenu* const edit = menu(u"200_Menu edit", {undo, redo});
    edit->addSeparator();
    edit->addActions({_actions.copyAddress, _actions.search});

    menu(u"200_Menu query", _actions.ofNodes());
    QMenu* const results = menu(u"200_Menu results", {_actions.nextUnread});
    results->addActions(_actions.ofResults());
    addRatings(*results);
    menu(u"200_Menu refresh",
         {_actions.refreshAll, _actions.refreshSelected, _actions.stopRefresh, _actions.serviceHealth});
    menu(u"200_Menu window", {_actions.blacklistEditor, _actions.charts, _actions.checkForUpdates});
}

void MainWindow::makeToolBar()
{
    QToolBar* const bar = addToolBar(_parts.texts.text(QStringLiteral("200_Tool bar")));
    bar->setObjectName(QStringLiteral("tools"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->addActions(
        {_actions.newQuery, _actions.newFolder, _actions.refreshAll, _actions.nextUnread, _actions.markAllRead});
}

void MainWindow::restoreLayout()
{
    // What makes no sense to them leaves them as they are.
    restoreGeometry(_remembered.geometry);
    restoreState(_remembered.docks);
    _treeSplitter->restoreState(_remembered.treeSplitter);
    _detailSplitter->restoreState(_remembered.detailSplitter);
    _resultsPane->restoreColumns(_remembered.columns);
    if (_remembered.order)
        _resultsPane->setOrder(static_cast<int>(*_remembered.order));
}

WindowLayout MainWindow::layoutNow() const
{
    WindowLayout layout = _remembered;
    layout.geometry = saveGeometry();
    layout.docks = saveState();
    layout.treeSplitter = _treeSplitter->saveState();
    layout.detailSplitter = _detailSplitter->saveState();
    layout.columns = _resultsPane->columns();
    layout.order = _resultsPane->order();
    return layout;
}

void MainWindow::rememberTree()
{
    _remembered.expandedFolders = _treePane->expanded();
    _remembered.selectedNode = _treePane->currentUuid();
}

void MainWindow::rememberLayout()
{
    _treePane->finishEditing();
    // A tree that is not there says nothing about folders.
    if (_isTreeShown && _treeModel.rowCount() > 0)
        rememberTree();
    _layoutWriter.run([this, layout = layoutNow()] {
        if (const QString error = _memory.write(layout); !error.isEmpty())
            systemLog(error);
        return LoopWorker::Call();
    });
}

} // namespace quarry
