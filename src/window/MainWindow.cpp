#include "window/MainWindow.h"

#include "platform/SystemLog.h"
#include "text/LocalisedFormat.h"
#include "window/ChartsPane.h"
#include "window/DamagePane.h"
#include "window/DetailPane.h"
#include "window/FirstRun.h"
#include "window/HealthDialog.h"
#include "window/NodeTransfers.h"
#include "window/NoticeBar.h"
#include "window/PreferencesSheet.h"
#include "window/QueryDialogs.h"
#include "window/RefreshBar.h"
#include "window/ResultOpener.h"
#include "window/ResultsPane.h"
#include "window/SeenResults.h"
#include "window/TreePane.h"
#include "window/WelcomePane.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDateTime>
#include <QFileDialog>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QTableView>

namespace quarry {

MainWindow::MainWindow(WindowParts parts)
    : _parts(std::move(parts)), _actions(_parts.texts, this), _tree(_parts.tree, *this), _edits(_tree),
      _resultEdits(_tree, _edits, _parts.texts), _nodeEdits(_tree, _edits, _parts.texts),
      _import({_tree, _edits, _parts.tree.files, _parts.tree.timers, _parts.texts}, this),
      _treeModel(_tree, _parts.texts), _refresh(_parts.updaterProgram, _parts.tree.home, [this] { showRefresh(); }),
      _schedule(
          {_parts.tree.home, _parts.tree.clock, _parts.tree.files, _parts.tree.timers},
          [this] {
              if (!mayRefresh())
                  return false;
              startRefresh();
              return true;
          },
          [this] { sayNextRefresh(); }),
      _memory(_parts.tree.home, _parts.tree.files), _remembered(_memory.read()), _layoutWriter(_parts.tree.timers)
{
    makePanes();
    makePages();
    makeMenus();
    makeToolBar();
    scopeKeys();
    connectNodes();
    connectResults();
    connectRefresh();
    new QueryDialogs({_tree, _nodeEdits, *_treePane, _actions, _parts.texts}, this); // The window's own.
    connectPages();
    restoreLayout();
    sayNextRefresh();
    updateActions();
    sayTitle();
    _tree.start();
}

MainWindow::~MainWindow() = default;

void MainWindow::connectNodes()
{
    connect(_treePane, &TreePane::currentChangedTo, this, [this] { showNode(); });
    connect(_treePane, &TreePane::contextMenuWanted, this, [this](const QPoint& at) { popUp(_actions.ofNodes(), at); });
    connect(&_treeModel, &TreeModel::renameWanted, this,
            [this](const QString& uuid, const QString& title) { _nodeEdits.rename(uuid, title); });
    connect(&_treeModel, &TreeModel::moveWanted, this,
            [this](const QStringList& uuids, const QString& folder, qsizetype index) {
                _nodeEdits.move(uuids, folder, index);
            });
    connect(_treePane->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { updateActions(); });

    connect(_actions.renameNode, &QAction::triggered, this,
            [this] { _treePane->rename(_treePane->selectedUuids().value(0)); });
    connect(_actions.removeNode, &QAction::triggered, this, [this] { _nodeEdits.remove(_treePane->selectedUuids()); });
    connect(_actions.markAllRead, &QAction::triggered, this, [this] { _resultEdits.markAllRead(chosenNodes()); });
    using Switch = TreeNodeEdits::Switch;
    const std::pair<QAction*, Switch> switches[] = {{_actions.enabled, Switch::Enabled},
                                                    {_actions.checkBlacklist, Switch::CheckBlacklist},
                                                    {_actions.computeChecksum, Switch::ComputeChecksum}};
    for (const auto& [action, which] : switches)
        connect(action, &QAction::triggered, this,
                [this, which = which](bool on) { _nodeEdits.set(which, on, _treePane->selectedUuids()); });
    connect(_actions.checkBlacklist, &QAction::triggered, this, [this](bool on) {
        if (!on)
            _notice->say(NoticeBar::Kind::Word, _parts.texts.text(QStringLiteral("212_Leaving")));
    });
    using Step = TreeNodeEdits::Step;
    const std::pair<QAction*, Step> steps[] = {{_actions.moveUp, Step::Up}, {_actions.moveDown, Step::Down}};
    for (const auto& [action, step] : steps)
        connect(action, &QAction::triggered, this,
                [this, step = step] { _nodeEdits.step(step, _treePane->selectedUuids()); });
}

void MainWindow::connectResults()
{
    _seen = new SeenResults(*_resultsPane, _resultEdits, this);
    connect(_resultsPane, &ResultsPane::selectedResultsChanged, this, [this] {
        showResult();
        _seen->follow();
    });
    for (const QAction* const action : {_actions.markRead, _actions.markUnread})
        connect(action, &QAction::triggered, _seen, &SeenResults::leaveAlone);
    connect(_resultsPane, &ResultsPane::unreadReached, this,
            [this](const QModelIndex& row) { _resultEdits.markOpened(_resultsPane->model(), {row}); });
    connect(_resultsPane, &ResultsPane::openWanted, this, [this] { openSelected(); });
    connect(_resultsPane, &ResultsPane::contextMenuWanted, this,
            [this](const QPoint& at) { popUp(_actions.ofResults(), at, true); });
    connect(_resultsPane, &ResultsPane::ratingWanted, this, [this](const QModelIndex& row, int rating) {
        _resultEdits.setRating(rating, _resultsPane->model(), {row});
    });

    const auto rows = [this] { return _resultsPane->selectedRows(); };
    const ResultModel& model = _resultsPane->model();
    connect(_actions.openResult, &QAction::triggered, this, [this] { openSelected(); });
    connect(_actions.copyAddress, &QAction::triggered, this, [this] { copyAddresses(); });
    connect(_actions.nextUnread, &QAction::triggered, this, [this] { nextUnread(); });
    connect(_actions.search, &QAction::triggered, this, [this] { _resultsPane->focusSearch(); });
    connect(_actions.markRead, &QAction::triggered, this,
            [this, &model, rows] { _resultEdits.setRead(true, model, rows()); });
    connect(_actions.markUnread, &QAction::triggered, this,
            [this, &model, rows] { _resultEdits.setRead(false, model, rows()); });
    connect(_actions.hideResult, &QAction::triggered, this,
            [this, &model, rows] { _resultEdits.setHidden(true, model, rows()); });
    connect(_actions.showAgain, &QAction::triggered, this,
            [this, &model, rows] { _resultEdits.setHidden(false, model, rows()); });
    connect(_actions.excludeHost, &QAction::triggered, this,
            [this, &model, rows] { _resultEdits.excludeHosts(model, rows()); });
    for (QAction* const action : _actions.rate)
        connect(action, &QAction::triggered, this,
                [this, &model, rows, action] { _resultEdits.setRating(action->data().toInt(), model, rows()); });
}

void MainWindow::connectRefresh()
{
    connect(_actions.refreshAll, &QAction::triggered, this, [this] { startRefresh(); });
    connect(_actions.refreshSelected, &QAction::triggered, this, [this] { startRefresh(_treePane->selectedUuids()); });
    connect(_actions.stopRefresh, &QAction::triggered, this, [this] { _refresh.stop(); });
    connect(_actions.serviceHealth, &QAction::triggered, this, [this] { showHealth(); });
    connect(_actions.quit, &QAction::triggered, this, [this] { close(); });
}

void MainWindow::connectPages()
{
    connect(_welcome, &WelcomePane::queryWanted, this, [this](const QString& words) { addFirstQuery(words); });
    connect(_firstRun, &FirstRun::failed, this,
            [this](const QString& reason) { _notice->say(NoticeBar::Kind::Warning, reason); });
    connect(_damage, &DamagePane::beginWanted, this, [this] { _tree.replaceDamaged(); });
    connect(_damage, &DamagePane::quitWanted, this, [this] { close(); });
    connect(_actions.newFolder, &QAction::triggered, this, [this] { addFolder(); });
    _transfers = new NodeTransfers({_parts.tree, _tree, *_treePane, _actions, _parts.texts}, this);
    connect(_transfers, &NodeTransfers::ended, this, [this](bool isDone, const QString& text) {
        _notice->say(isDone ? NoticeBar::Kind::Word : NoticeBar::Kind::Warning, text);
    });
    connect(_actions.preferences, &QAction::triggered, this, [this] {
        auto* const sheet = new PreferencesSheet(
            {_parts.tree.home, _parts.tree.clock, _parts.tree.files, _parts.texts, _parts.followSchedule}, this);
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        sheet->open();
    });
    connect(_actions.importFile, &QAction::triggered, this, [this] { askForImport(); });
    connect(&_import, &FileImport::told, this, [this](bool isDone, const QString& text, const QString& first) {
        if (!first.isEmpty())
            _treePane->select(first);
        _notice->say(isDone ? NoticeBar::Kind::Word : NoticeBar::Kind::Warning, text);
    });
}

QueryCorePtr MainWindow::shownNode() const
{
    const QueryCorePtr node = _tree.node(_treePane->currentUuid());
    return node ? node : _tree.root();
}

QList<QueryCorePtr> MainWindow::chosenNodes() const
{
    const QStringList selected = _treePane->selectedUuids();
    return selected.isEmpty() ? QList{_tree.root()} : edits::topmost(_tree.root(), selected);
}

void MainWindow::showNode()
{
    const QueryCorePtr node = shownNode();
    const TreeCounts::Counts counts = _tree.counts().of(node->UUID());
    _resultsPane->show(node, counts.results + counts.hidden);
    _charts->show(node, node == _tree.root() ? _parts.texts.text(QStringLiteral("220_Everything")) : node->title());
    updateActions();
}

void MainWindow::showResult()
{
    const QModelIndexList rows = _resultsPane->selectedRows();
    const ResultModel& model = _resultsPane->model();
    if (rows.size() == 1) {
        const ResultListing::Row& row = model.row(rows.constFirst());
        if (const QueryCorePtr query = _tree.node(model.listing().queryUuid(row)))
            _detailPane->show(row.record, *query);
    } else if (rows.isEmpty()) {
        _detailPane->showNothing();
    } else {
        _detailPane->showSeveral(rows.size());
    }
    updateActions();
}

void MainWindow::updateActions()
{
    const QStringList nodes = _treePane->selectedUuids();
    for (QAction* const action : _actions.ofNodes())
        action->setEnabled(!nodes.isEmpty());
    // Without a selected node, everything.
    for (QAction* const action : {_actions.exportNode, _actions.offlineCopy})
        action->setEnabled(true);
    const QList<QueryCorePtr> chosen = chosenNodes();
    _actions.markAllRead->setEnabled(std::any_of(chosen.begin(), chosen.end(), [this](const QueryCorePtr& node) {
        return _tree.counts().of(node->UUID()).unread > 0;
    }));
    using Switch = TreeNodeEdits::Switch;
    const std::pair<QAction*, Switch> switches[] = {{_actions.enabled, Switch::Enabled},
                                                    {_actions.checkBlacklist, Switch::CheckBlacklist},
                                                    {_actions.computeChecksum, Switch::ComputeChecksum}};
    for (const auto& [action, which] : switches) {
        const std::optional<bool> isOn = _nodeEdits.isOn(which, nodes);
        action->setEnabled(isOn.has_value());
        action->setChecked(isOn.value_or(false));
    }
    const QueryCorePtr single = nodes.size() == 1 ? _tree.node(nodes.constFirst()) : nullptr;
    for (QAction* const action : {_actions.editQuery, _actions.queryFilters})
        action->setEnabled(single && !single->isQueryFolder());
    _actions.renameNode->setEnabled(single != nullptr);
    _actions.moveUp->setEnabled(_nodeEdits.canStep(TreeNodeEdits::Step::Up, nodes));
    _actions.moveDown->setEnabled(_nodeEdits.canStep(TreeNodeEdits::Step::Down, nodes));

    const QModelIndexList rows = _resultsPane->selectedRows();
    const bool showsHidden = _resultsPane->showsHidden();
    const bool isUnread = !rows.isEmpty() && rows.constFirst().data(ResultModel::UnreadRole).toBool();
    for (QAction* const action : _actions.ofResults())
        action->setEnabled(!rows.isEmpty());
    for (QAction* const action : _actions.rate)
        action->setEnabled(!rows.isEmpty() && !showsHidden);
    for (QAction* const action : {_actions.markRead, _actions.markUnread})
        action->setEnabled(!rows.isEmpty() && !showsHidden);
    _actions.blacklistAddress->setEnabled(rows.size() == 1);
    const bool offersUnread = !rows.isEmpty() && (!isUnread || rows.size() > 1);
    if (offersUnread) // Before the other goes: it takes over the focus of its button.
        _actions.markUnread->setVisible(true);
    _actions.markRead->setVisible(rows.isEmpty() || isUnread || rows.size() > 1);
    _actions.markUnread->setVisible(offersUnread);
    _actions.hideResult->setVisible(!showsHidden);
    _actions.showAgain->setVisible(showsHidden);
    const bool isReadable = _pages->currentWidget() != _damage;
    for (QAction* const action : {_actions.newQuery, _actions.newAdvancedQuery, _actions.newCombinedQuery,
                                  _actions.newFolder, _actions.importFile})
        action->setEnabled(isReadable);
    _actions.refreshAll->setEnabled(isReadable && mayRefresh());
    _actions.refreshSelected->setEnabled(isReadable && mayRefresh());
    _actions.stopRefresh->setEnabled(_refresh.state().isRunning);
}

void MainWindow::choosePage()
{
    const LiveTree::Safety safety = _tree.safety();
    const bool isUnreadable = safety == LiveTree::Safety::Safe && !_tree.fault().isEmpty();
    QWidget* page = _treeSplitter;
    if (_tree.isDamaged() || isUnreadable) {
        _damage->show(_tree.fault(), _tree.damagedCopy(), _tree.isDamaged());
        page = _damage;
    } else if (safety != LiveTree::Safety::Loading && _tree.root()->numberOfChilds() == 0) {
        page = _welcome;
    }
    if (page == _pages->currentWidget())
        return;
    _pages->setCurrentWidget(page);
    updateActions();
    if (page == _welcome) {
        _firstRun->show();
        _welcome->focusQuery();
    } else {
        (page == _treeSplitter ? static_cast<QWidget*>(_treePane) : _damage)->setFocus(Qt::OtherFocusReason);
    }
}

void MainWindow::startRefresh(const QStringList& nodes)
{
    if (!mayRefresh())
        return;
    _isRefreshWaiting = true;
    _tree.save([this, nodes](bool isSaved) {
        _isRefreshWaiting = false;
        if (isSaved && !_leaving) {
            _isWholeRefresh = nodes.isEmpty();
            _refresh.start(nodes);
        } else if (!isSaved) {
            _notice->say(NoticeBar::Kind::Warning,
                         filledFormat(_parts.texts.text(QStringLiteral("205_Not started")), {_tree.fault()}));
        }
        updateActions();
    });
    updateActions();
}

void MainWindow::addFirstQuery(const QString& words)
{
    const QueryCorePtr query = QueryCore::initWithQuery(words);
    if (!query)
        return;
    _nodeEdits.add(query, {});
    _treePane->select(query->UUID());
    startRefresh({query->UUID()});
}

void MainWindow::addFolder()
{
    const QueryCorePtr folder =
        QueryCore::initWithQueryFolder(_parts.texts.text(QStringLiteral("203_New folder title")));
    _nodeEdits.add(folder, _treePane->folderForNew());
    _treePane->select(folder->UUID());
    _treePane->rename(folder->UUID());
}

void MainWindow::askForImport()
{
    auto* const dialog = new QFileDialog(this, _parts.texts.text(QStringLiteral("206_Import title")));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters(
        {_parts.texts.text(QStringLiteral("206_Kinds")), _parts.texts.text(QStringLiteral("206_All kinds"))});
    connect(dialog, &QFileDialog::filesSelected, this, &MainWindow::openFiles);
    dialog->open();
}

void MainWindow::nextUnread()
{
    if (!_resultsPane->selectNextUnread() && _treePane->selectNextUnread())
        _resultsPane->selectUnreadWhenLoaded();
    _resultsPane->list().setFocus(Qt::OtherFocusReason);
}

void MainWindow::openSelected()
{
    ResultOpener opener(_parts.workspace, _parts.texts);
    if (!opener.isWanted(_resultsPane->selectedRows().size(), this))
        return;
    // Asking takes its time: the rows as they are now.
    const QModelIndexList opened = opener.open(_resultsPane->selectedRows());
    _resultEdits.markOpened(_resultsPane->model(), opened);
    if (!opener.fault().isEmpty())
        _notice->say(NoticeBar::Kind::Warning, opener.fault());
}

void MainWindow::copyAddresses()
{
    QStringList addresses;
    const QModelIndexList rows = _resultsPane->selectedRows();
    for (const QModelIndex& row : rows)
        addresses.append(row.data(ResultModel::AddressRole).toString());
    QApplication::clipboard()->setText(addresses.join(u'\n'));
}

void MainWindow::popUp(const QList<QAction*>& actions, const QPoint& at, bool withRating)
{
    QMenu* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(actions);
    if (withRating)
        addRatings(*menu);
    menu->popup(at);
}

void MainWindow::addRatings(QMenu& menu)
{
    QMenu* const rating = menu.addMenu(_parts.texts.text(QStringLiteral("203_Rate")));
    for (QAction* const action : _actions.rate)
        rating->addAction(action);
}

void MainWindow::showRefresh()
{
    _refreshBar->show(_refresh.state());
    _treeModel.setUpdating(_refresh.state().updating);
    updateActions();
    if (_refresh.state().isRunning)
        return;
    if (const QString warning = _refreshBar->warning(_refresh.state()); !warning.isEmpty())
        _notice->say(NoticeBar::Kind::Warning, warning);
    _tree.checkFile();
    if (_health && _health->isVisible())
        _health->show(serviceStates(_parts.tree.home, _parts.tree.files));
    if (std::exchange(_isWholeRefresh, false))
        _schedule.refreshEnded();
}

void MainWindow::sayNextRefresh()
{
    const std::optional<Date> next = _schedule.nextLaunch();
    if (!next) {
        _nextRefresh->setText(_parts.texts.text(QStringLiteral("200_No automatic refresh")));
        return;
    }
    const QDateTime when = QDateTime::fromMSecsSinceEpoch(qint64(next->unixSeconds() * 1000.0));
    const bool isToday = when.date() == QDate::currentDate();
    const QLocale locale;
    _nextRefresh->setText(filledFormat(
        _parts.texts.text(QStringLiteral("200_Next refresh")),
        {isToday ? locale.toString(when.time(), QLocale::ShortFormat) : locale.toString(when, QLocale::ShortFormat)}));
}

void MainWindow::treeReplaced()
{
    // Before the first tree, and where an empty one stood for a damaged file, there is nothing to keep.
    const bool wasEmpty = _treeModel.rowCount() == 0;
    if (!wasEmpty)
        rememberTree();
    _treePane->rebuild();
    _isTreeShown = true;
    if (wasEmpty) {
        if (_remembered.geometry.isEmpty())
            _treePane->expandAll(); // Never seen before: nothing is to be missed.
        else
            _treePane->setExpanded(_remembered.expandedFolders);
        _treePane->selectOrFirst(_remembered.selectedNode);
    }
    showNode();
    sayTitle();
    choosePage();
}

void MainWindow::treeEdited(const QStringList& queries, bool structure)
{
    if (structure)
        _treePane->rebuild();
    else
        _treeModel.refresh();
    const QueryCorePtr shown = shownNode();
    const bool isShown = structure || std::any_of(queries.begin(), queries.end(), [&](const QString& uuid) {
                             return shown->findQueryForUUID(uuid) != nullptr;
                         });
    if (isShown)
        showNode();
    sayTitle();
    choosePage();
}

void MainWindow::safetyChanged(LiveTree::Safety safety, const QString& reason)
{
    const char16_t* const keys[] = {u"200_Loading", u"200_Saved", u"200_Saving", u"200_Not saved"};
    _safety->setToolTip(reason);
    choosePage();
    _safety->setText(_pages->currentWidget() == _damage
                         ? QString()
                         : _parts.texts.text(QString::fromUtf16(keys[static_cast<std::size_t>(safety)])));
    saySaveFault(safety, reason);
    _import.goOn();
    if (safety != LiveTree::Safety::Loading && !std::exchange(_isScheduleKept, true))
        _schedule.start();
}

void MainWindow::saySaveFault(LiveTree::Safety safety, const QString& reason)
{
    if (safety == LiveTree::Safety::Safe) {
        _notice->takeBack(std::exchange(_saveFault, {}));
    } else if (safety == LiveTree::Safety::Failed && _pages->currentWidget() != _damage) {
        const QString text = filledFormat(_parts.texts.text(QStringLiteral("200_Save failed")), {reason});
        // It is tried again and again, but said once.
        if (std::exchange(_saveFault, text) != text)
            _notice->say(NoticeBar::Kind::Warning, text);
    }
}

void MainWindow::showHealth()
{
    if (!_health)
        _health = new HealthDialog(_parts.texts, this);
    _health->show(serviceStates(_parts.tree.home, _parts.tree.files));
    _health->activateWindow();
}

void MainWindow::sayTitle()
{
    const qint64 unread = _tree.counts().of(_tree.root()->UUID()).unread;
    const QString name = QStringLiteral("QuarrySpotter");
    setWindowTitle(unread == 0 ? name
                               : filledFormat(_parts.texts.text(QStringLiteral("200_Title with unread")),
                                              {name, QLocale().toString(unread)}));
}

void MainWindow::saveAll(std::function<void(bool isSaved)> done)
{
    rememberLayout();
    _tree.save([this, done = std::move(done)](bool isSaved) {
        // Behind the layout.
        _layoutWriter.run([done, isSaved] { return [done, isSaved] { done(isSaved); }; });
    });
}

void MainWindow::finish(std::function<void(bool isSaved)> done)
{
    _transfers->stopToQuit([this, done = std::move(done)] { _import.whenIdle([this, done] { saveAll(done); }); });
}

void MainWindow::leave()
{
    _import.stop();
    _leaving = std::make_shared<int>(0);
    saveAll([this, leaving = _leaving](bool isSaved) {
        if (leaving != _leaving)
            return; // It was wanted back meanwhile.
        _leaving = nullptr;
        updateActions();
        if (isSaved)
            Q_EMIT closed();
        else
            askWhetherToLeave();
    });
}

void MainWindow::askWhetherToLeave()
{
    show();
    auto* const question =
        new QMessageBox(QMessageBox::Warning, _parts.texts.text(QStringLiteral("200_Not saved")),
                        filledFormat(_parts.texts.text(QStringLiteral("200_Quit unsaved")), {_tree.fault()}),
                        QMessageBox::Retry | QMessageBox::Discard | QMessageBox::Cancel, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    question->setDefaultButton(QMessageBox::Retry);
    for (const auto& [which, key] :
         {std::pair(QMessageBox::Retry, u"200_Retry"), std::pair(QMessageBox::Discard, u"200_Discard"),
          std::pair(QMessageBox::Cancel, u"200_Cancel")})
        question->button(which)->setText(_parts.texts.text(QString::fromUtf16(key)));
    connect(question, &QMessageBox::finished, this, [this](int answer) {
        if (answer == QMessageBox::Cancel)
            return;
        hide();
        if (answer == QMessageBox::Retry)
            leave();
        else
            Q_EMIT closed();
    });
    question->open();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (_transfers->isExporting()) {
        if (QMessageBox::warning(this, _parts.texts.text(QStringLiteral("206_Export title")),
                                 _parts.texts.text(QStringLiteral("200_Quit exporting")),
                                 QMessageBox::Discard | QMessageBox::Cancel,
                                 QMessageBox::Cancel) != QMessageBox::Discard) {
            event->ignore();
            return;
        }
        _transfers->dropExports();
    }
    if (_transfers->isCopying()) {
        event->ignore();
        _transfers->stopToQuit([this] { close(); });
        return;
    }
    // Gone from the screen at once: the saving may take a while.
    event->accept();
    leave();
}

void MainWindow::bringToFront(const QString& activationToken)
{
    if (std::exchange(_leaving, nullptr))
        updateActions();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    // Where Qt looks for it when it asks the desktop for the focus.
    if (!activationToken.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
    activateWindow();
}

void MainWindow::openFiles(const QStringList& files)
{
    _import.add(files, _treePane->folderForNew());
}

} // namespace quarry
