#include "WindowRig.h"
#include "model/ResultComparator.h"
#include "window/DetailPane.h"
#include "window/NoticeBar.h"
#include "window/SeenResults.h"

#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QProcess>
#include <QScrollBar>
#include <QTextBrowser>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class MainWindowTest : public WindowTest {
protected:
    void SetUp() override { makeDatabase(); }
    QRect ratingCell(int row) { return list().visualRect(list().model()->index(row, ResultModel::RatingColumn)); }
    /// How much of the stars of a row is filled.
    int filled(int row)
    {
        return pixelsLike(list().palette().color(QPalette::Highlight), seen(*list().viewport(), ratingCell(row)), {},
                          40);
    }
    /// Presses, moves and lets go as a hand would: the desktop's own drag and drop takes part.
    void drag(const QPoint& from, const QPoint& to)
    {
        const auto word = [](const QPoint& at) {
            return QStringList{u"mousemove"_s, QString::number(at.x()), QString::number(at.y())};
        };
        QStringList arguments = word(from) + QStringList{u"mousedown"_s, u"1"_s};
        for (int step = 1; step <= 10; ++step)
            arguments += word(from + (to - from) * step / 10) + QStringList{u"sleep"_s, u"0.03"_s};
        arguments += QStringList{u"mouseup"_s, u"1"_s};
        QProcess hand;
        hand.start(u"xdotool"_s, arguments);
        EXPECT_TRUE(happens([&hand] { return hand.state() == QProcess::NotRunning; }));
        EXPECT_EQ(hand.exitCode(), 0);
    }
    DetailPane& detail() { return *window->findChild<DetailPane*>(); }
    /// The button of that action beside the selected result.
    QToolButton* button(const QAction* action)
    {
        for (QToolButton* const each : detail().findChildren<QToolButton*>()) {
            const QAction* const of = each->defaultAction();
            const QMenu* const menu = of ? of->menu() : nullptr;
            if (of == action || (menu && menu->actions().contains(action)))
                return each;
        }
        ADD_FAILURE() << "no button for " << action->text().toStdString();
        return nullptr;
    }
    QPoint onScreen(const QPoint& inTree) { return window->treePane().viewport()->mapToGlobal(inTree); }
};

TEST_F(MainWindowTest, ShowsTheTreeItsBadgesAndTheResultsOfWhatIsClicked)
{
    open();
    EXPECT_EQ(window->windowTitle(), u"QuarrySpotter (60 unread)"_s);
    window->treePane().expandAll();
    clickTree(u"pond"_s);
    EXPECT_EQ(list().model()->rowCount(), 60);
    EXPECT_EQ(shownTitles().value(0), u"r60"_s) << "newest first";
    const QColor badge = window->palette().color(QPalette::Highlight);
    const QRect row = treeRow(u"Garden"_s);
    EXPECT_GT(pixelsLike(badge, seen(*window->treePane().viewport(), row)), 100);
    clickTree(u"bread"_s);
    EXPECT_EQ(list().model()->rowCount(), 0);
    EXPECT_EQ(pixelsLike(badge, seen(*window->treePane().viewport(),
                                     treeRow(u"pond"_s).adjusted(0, 0, -treeRow(u"pond"_s).width() / 2, 0))),
              0)
        << "the selection went with the click";
    clickTree(u"Garden"_s);
    EXPECT_EQ(list().model()->rowCount(), 60) << "a folder shows what lies below it";
    EXPECT_EQ(list().model()->index(0, 0).data(Qt::AccessibleTextRole), u"unread, new, r60"_s);
    screenshot(u"main-window"_s);
}

TEST_F(MainWindowTest, KeysWorkThroughTheResultsAndUndoTakesEachBack)
{
    openAt(pond);
    QTest::keyClick(&list(), Qt::Key_N);
    EXPECT_EQ(current(), u"r60"_s);
    window->setLayoutDirection(Qt::RightToLeft);
    QTest::keyClick(&list(), Qt::Key_N);
    EXPECT_EQ(current(), u"r59"_s);
    EXPECT_TRUE(list().selectionModel()->isRowSelected(1));
    EXPECT_EQ(window->windowTitle(), u"QuarrySpotter (58 unread)"_s) << "what one steps to is read";
    QTest::keyClick(&list(), Qt::Key_U);
    EXPECT_EQ(window->windowTitle(), u"QuarrySpotter (59 unread)"_s);
    QTest::keyClick(&list(), Qt::Key_H);
    EXPECT_EQ(current(), u"r58"_s) << "the one that took its place";
    EXPECT_FALSE(shownTitles().contains(u"r59"_s));
    QTest::keyClick(&list(), Qt::Key_4);
    EXPECT_GT(filled(list().currentIndex().row()), 0);
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_EQ(workspace.addresses, QStringList{u"http://r58.example/page"_s});
    QTest::keyClick(&list(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), u"http://r58.example/page"_s);
    QTest::keyClick(&list(), Qt::Key_X);
    EXPECT_EQ(list().model()->rowCount(), 58);
    QTest::keyClick(&list(), Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(window->windowTitle(), u"QuarrySpotter"_s);

    for (int step = 0; step < 5; ++step)
        QTest::keyClick(&list(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(list().model()->rowCount(), 60);
    EXPECT_EQ(window->windowTitle(), u"QuarrySpotter (57 unread)"_s) << "what was seen stays read";
    EXPECT_EQ(list().model()->index(2, 0).data(ResultModel::RatingRole).toInt(), 0);
}

TEST_F(MainWindowTest, TypingStaysTyping)
{
    openAt(pond);
    QTest::keyClick(&list(), Qt::Key_Slash);
    QWidget* const search = QApplication::focusWidget();
    ASSERT_TRUE(qobject_cast<QLineEdit*>(search));
    QTest::keyClicks(search, u"xhn5 m"_s);
    EXPECT_EQ(qobject_cast<QLineEdit*>(search)->text(), u"xhn5 m"_s);
    EXPECT_EQ(list().model()->rowCount(), 0);
    QTest::keyClick(search, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(search, u"R7.EX"_s);
    EXPECT_EQ(shownTitles(), QStringList{u"r7"_s}) << "in addresses, whatever the case";
    EXPECT_EQ(window->windowTitle(), u"QuarrySpotter (60 unread)"_s);

    window->treePane().setFocus();
    window->treePane().select(bread);
    QTest::keyClick(&window->treePane(), Qt::Key_F2);
    QWidget* const editor = QApplication::focusWidget();
    ASSERT_TRUE(qobject_cast<QLineEdit*>(editor));
    QTest::keyClicks(editor, u"Numb hux 3"_s);
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(happens([this] { return window->tree().node(bread)->title() == u"Numb hux 3"_s; }));
    QTest::keyClick(&window->treePane(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(window->tree().node(bread)->title(), u"bread"_s);
}

TEST_F(MainWindowTest, StarsAreClickedAndKept)
{
    openAt(pond);
    const auto star = [this](int row, int number) {
        const QRect cell = ratingCell(row);
        return QPoint(cell.left() + 4 + (cell.width() - 8) * (2 * number - 1) / 10, cell.center().y());
    };
    const int before = filled(2);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, star(1, 3));
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, star(2, 5));
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, star(2, 5));
    QTest::mouseRelease(list().viewport(), Qt::LeftButton, {}, star(2, 5));
    EXPECT_EQ(workspace.addresses, QStringList()) << "a second click there is no click";
    list().clearSelection();
    EXPECT_GT(filled(2), filled(1));
    EXPECT_GT(filled(1), before);
    EXPECT_EQ(list().model()->index(1, ResultModel::RatingColumn).data(Qt::AccessibleTextRole), u"3 of 5 stars"_s);
    screenshot(u"stars"_s);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, star(2, 5));
    list().clearSelection();
    EXPECT_EQ(filled(2), before) << "the last star that is set takes the rating away";
    ASSERT_TRUE(saves());
    const ResultList results =
        openDatabase()->queryForUUID(pond)->snapshot().fields._currentResult.value_or(ResultList());
    qint64 sum = 0;
    for (const ResultRecord& each : results)
        sum += each.rating().value_or(0);
    EXPECT_EQ(sum, 3);
}

TEST_F(MainWindowTest, ATitleIsTypedToItsEndWhateverHappensMeanwhile)
{
    openAt(pond);
    window->treePane().setFocus();
    QTest::keyClick(&window->treePane(), Qt::Key_F2);
    const QPointer<QWidget> editor = QApplication::focusWidget();
    ASSERT_TRUE(qobject_cast<QLineEdit*>(editor));
    QTest::keyClicks(editor, u"Still wa"_s);
    window->actions().markAllRead->trigger();
    edit([](Engine& database) { database.addQuery(u"stones"_s, false); });
    ASSERT_TRUE(happens([this] { return node(u"stones"_s) != nullptr; }));
    ASSERT_TRUE(editor);
    QTest::keyClicks(editor, u"ters"_s);
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(happens([this] { return treeRow(u"stones"_s).isValid(); })) << "it waited";
    EXPECT_EQ(window->tree().node(pond)->title(), u"Still waters"_s);
    EXPECT_EQ(window->treePane().currentUuid(), pond);
}

TEST_F(MainWindowTest, SomethingIsAlwaysSelectedAndEverythingHasARow)
{
    TreePane& tree = open().treePane();
    tree.expandAll();
    const WindowActions& actions = window->actions();
    auto& model = static_cast<TreeModel&>(*tree.model());
    const auto spoken = [&model](const QString& uuid) {
        return model.indexOf(uuid).data(Qt::AccessibleTextRole).toString();
    };
    model.setUpdating({pond});
    EXPECT_EQ(spoken(garden), u"Garden, 60 unread, being refreshed"_s) << "the folder may be closed";
    model.setUpdating({});
    clickTree(u"bread"_s);
    actions.enabled->trigger();
    EXPECT_EQ(spoken(bread), u"bread, paused"_s);
    clickTree(u"All queries"_s);
    EXPECT_EQ(spoken(QString()), u"All queries, 60 unread"_s);
    EXPECT_EQ(list().model()->rowCount(), 60);
    EXPECT_FALSE(actions.renameNode->isEnabled());
    EXPECT_FALSE(actions.removeNode->isEnabled());
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, QPoint(20, tree.viewport()->height() - 5));
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, Qt::ControlModifier, treeRow(u"All queries"_s).center());
    EXPECT_EQ(tree.selectionModel()->selectedRows().size(), 1);
    actions.markAllRead->trigger();
    EXPECT_EQ(window->windowTitle(), u"QuarrySpotter"_s);

    // What goes leaves the selection to what stands nearest.
    clickTree(u"pond"_s);
    QTest::keyClick(&tree, Qt::Key_Delete);
    EXPECT_EQ(tree.selectedUuids(), QStringList{garden});
    QTest::keyClick(&tree, Qt::Key_Delete);
    EXPECT_EQ(tree.selectedUuids(), QStringList{bread});
    QTest::keyClick(&tree, Qt::Key_Z, Qt::ControlModifier);
    tree.select(bread);
    EXPECT_EQ(tree.selectedUuids(), QStringList{bread}) << "whatever keys were pressed last";
}

TEST_F(MainWindowTest, AFoldersSwitchesAreThoseOfItsQueries)
{
    openAt(garden);
    using State = bool (QueryCore::*)() const;
    const WindowActions& actions = window->actions();
    const std::pair<QAction*, State> switches[] = {{actions.checkBlacklist, &QueryCore::isCheckingBlacklist},
                                                   {actions.computeChecksum, &QueryCore::isComputingChecksum},
                                                   {actions.enabled, &QueryCore::isEnabled}};
    for (const auto& [action, state] : switches) {
        for (int time = 0; time < 2; ++time) {
            const bool wasOn = (*window->tree().node(pond).*state)();
            EXPECT_EQ(action->isChecked(), wasOn) << action->text().toStdString();
            action->trigger();
            EXPECT_EQ((*window->tree().node(pond).*state)(), !wasOn) << action->text().toStdString();
        }
    }
}

TEST_F(MainWindowTest, KeysMoveNodesAndASheetPutsThemIntoFolders)
{
    openAt(garden);
    TreePane& tree = window->treePane();
    tree.setFocus();
    const auto order = [this, &tree] {
        return child(u"Garden"_s).isEmpty() ? QString() : tree.model()->index(1, 0).data().toString();
    };
    EXPECT_FALSE(window->actions().moveUp->isEnabled());
    QTest::keyClick(&tree, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(order(), u"bread"_s);
    EXPECT_FALSE(window->actions().moveDown->isEnabled());
    QTest::keyClick(&tree, Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(order(), u"Garden"_s);
    tree.select(bread);
    window->actions().moveToFolder->trigger();
    QDialog* const asked = sheet();
    QTest::keyClick(asked->findChild<QTreeWidget*>(), Qt::Key_Down);
    keepPicture(asked, u"move-to-folder"_s);
    asked->accept();
    ASSERT_TRUE(saves());
    EXPECT_EQ(child(u"bread"_s, garden), bread);
}

TEST_F(MainWindowTest, WhatAnotherProgramWritesAppearsWithoutLosingThePlace)
{
    openAt(pond);
    window->treePane().expandAll();
    list().selectRow(30);
    list().selectionModel()->select(list().model()->index(33, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
    const QString chosen = current();
    list().verticalScrollBar()->setValue(25);
    edit([this](QueryDatabaseEngine& database) {
        database.addQuery(u"stones"_s, false);
        database.queryForUUID(pond)->restoreResults({result(u"aged"_s, 700000000.0)}, {});
    });
    ASSERT_TRUE(happens([this] { return list().model()->rowCount() == 61; }));
    EXPECT_EQ(current(), chosen);
    EXPECT_EQ(list().selectionModel()->selectedRows().size(), 2);
    EXPECT_EQ(list().verticalScrollBar()->value(), 25);
    EXPECT_EQ(window->treePane().currentUuid(), pond);
    EXPECT_TRUE(treeRow(u"pond"_s).isValid()) << "its folder is still open";
    EXPECT_TRUE(treeRow(u"stones"_s).isValid());
}

TEST_F(MainWindowTest, NodesAreDraggedIntoFoldersAndBack)
{
    open();
    window->treePane().expandAll();
    drag(onScreen(treeRow(u"bread"_s).center()), onScreen(treeRow(u"Garden"_s).center()));
    ASSERT_TRUE(happens([this] { return window->tree().node(garden)->numberOfChilds() == 2; }));
    // Just above the first row: the top level.
    drag(onScreen(treeRow(u"pond"_s).center()), onScreen(treeRow(u"Garden"_s).topLeft() + QPoint(60, 1)));
    ASSERT_TRUE(happens([this] { return window->tree().root()->numberOfChilds() == 2; }));
    EXPECT_EQ(window->treePane().model()->index(1, 0).data().toString(), u"pond"_s);
    ASSERT_TRUE(saves());
    EXPECT_EQ(child(u"bread"_s, garden), bread);
    EXPECT_EQ(child(u"pond"_s), pond);
    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
    ASSERT_TRUE(saves());
    EXPECT_EQ(child(u"bread"_s), bread);
    EXPECT_EQ(child(u"pond"_s, garden), pond);
}

TEST_F(MainWindowTest, WhatIsDoneAgainAndTakenBackKeepsWhatCameMeanwhile)
{
    openAt(pond);
    const auto undo = [this] { QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier); };
    const auto redo = [this] { QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); };
    list().selectRow(0);
    QTest::keyClick(&list(), Qt::Key_X);
    clickTree(u"bread"_s);
    window->actions().removeNode->trigger();
    undo();
    undo();
    ASSERT_TRUE(saves());
    edit([this](Engine& database) {
        database.queryForUUID(bread)->restoreResults({result(u"crumb"_s, 800000000.0)}, {});
        database.queryForUUID(pond)->restoreResults(
            {result(u"more"_s, 800000000.0).withUrl(*Url::fromText(u"http://r60.example/more"_s))}, {});
    });
    const auto results = [this](const QString& uuid) { return window->tree().counts().of(uuid).results; };
    ASSERT_TRUE(happens([&] { return results(pond) == 61 && results(bread) == 1; }));
    redo();
    EXPECT_EQ(results(pond), 59);
    redo();
    EXPECT_FALSE(window->tree().node(bread));
    undo();
    undo();
    EXPECT_EQ(results(bread), 1);
    EXPECT_EQ(results(pond), 61);
}

TEST_F(MainWindowTest, HiddenResultsAreShownOnRequestAndComeBack)
{
    openAt(pond);
    list().selectRow(0);
    QTest::keyClick(&list(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_FALSE(window->actions().blacklistAddress->isEnabled()) << "the editor takes one address";
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_EQ(list().model()->rowCount(), 58);
    EXPECT_EQ(list().currentIndex().row(), 0) << "what took the place of the first";
    QToolButton* hidden = nullptr;
    for (QToolButton* const button : window->resultsPane().findChildren<QToolButton*>())
        hidden = button->isCheckable() ? button : hidden;
    ASSERT_TRUE(hidden);
    QTest::mouseClick(hidden, Qt::LeftButton);
    EXPECT_EQ(shownTitles(), (QStringList{u"r60"_s, u"r59"_s}));
    list().selectRow(0);
    QTest::keyClick(&list(), Qt::Key_M);
    EXPECT_FALSE(window->actions().markRead->isEnabled()) << "hidden ones count as neither";
    QTest::keyClick(&list(), Qt::Key_N);
    EXPECT_EQ(current(), u"r58"_s) << "the next unread one is none of the hidden";
    QTest::mouseClick(hidden, Qt::LeftButton);
    EXPECT_TRUE(happens([this] { return !button(window->actions().hideResult)->isVisible(); }));
    list().selectAll();
    EXPECT_TRUE(happens([this] { return button(window->actions().showAgain)->isVisible(); }))
        << "what works on one works on several";
    QTest::keyClick(&list(), Qt::Key_H);
    EXPECT_EQ(list().model()->rowCount(), 0);
    QTest::mouseClick(hidden, Qt::LeftButton);
    EXPECT_EQ(list().model()->rowCount(), 60);
}

TEST_F(MainWindowTest, WhatOneStaysWithIsRead)
{
    const auto isTitled = [this](const QString& title) {
        return happens([&] { return window->windowTitle() == title; });
    };
    const auto click = [this](int row) {
        QTest::mouseClick(list().viewport(), Qt::LeftButton, {},
                          list().visualRect(list().model()->index(row, 0)).center());
    };
    openAt(pond);
    click(2);
    EXPECT_TRUE(isTitled(u"QuarrySpotter (59 unread)"_s));
    QTest::keyClick(&list(), Qt::Key_U);
    QTest::keyClick(&list(), Qt::Key_Down);
    QTest::keyClick(&list(), Qt::Key_U);
    QTest::keyClick(&list(), Qt::Key_M);
    QTest::keyClick(&list(), Qt::Key_U);
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_EQ(window->windowTitle(), u"QuarrySpotter (60 unread)"_s) << "passing by is not reading";
    EXPECT_TRUE(isTitled(u"QuarrySpotter (59 unread)"_s)) << "as the user said, but the last one";

    window->resultsPane().setOrder(UnreadFirst);
    click(0);
    const auto* const moment = window->findChild<SeenResults*>()->findChild<QTimer*>();
    EXPECT_TRUE(happens([moment] { return !moment->isActive(); }));
    EXPECT_EQ(list().currentIndex().row(), 0);
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_TRUE(isTitled(u"QuarrySpotter (58 unread)"_s)) << "not before one goes on";
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, list().visualRect(list().currentIndex()).center());
    EXPECT_EQ(workspace.addresses.size(), 1);
}

TEST_F(MainWindowTest, HeadersSortAndWhatIsInViewStaysThere)
{
    openAt(pond);
    QHeaderView& header = *list().horizontalHeader();
    const auto clickHeader = [&header](int column) {
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                          QPoint(header.sectionViewportPosition(column) + 8, header.height() / 2));
    };
    list().selectRow(2);
    clickHeader(ResultModel::FoundColumn);
    EXPECT_EQ(window->resultsPane().order(), OldestFirst);
    EXPECT_EQ(header.sortIndicatorOrder(), Qt::AscendingOrder);
    EXPECT_EQ(current(), u"r58"_s);
    EXPECT_TRUE(shownTitles().contains(u"r58"_s)) << "what is selected is still in view";
    clickHeader(ResultModel::TitleColumn);
    EXPECT_EQ(header.sortIndicatorSection(), ResultModel::TitleColumn);
    clickHeader(ResultModel::ServiceColumn);
    EXPECT_EQ(window->resultsPane().order(), ByTitle);
    EXPECT_EQ(header.sortIndicatorSection(), ResultModel::TitleColumn);

    window->resultsPane().setOrder(NewestFirst);
    list().clearSelection();
    list().verticalScrollBar()->setValue(10);
    const QStringList before = shownTitles();
    edit([this](Engine& database) {
        database.queryForUUID(pond)->restoreResults({result(u"newer"_s, 900000000.0)}, {});
    });
    ASSERT_TRUE(happens([this] { return list().model()->rowCount() == 61; }));
    EXPECT_EQ(shownTitles(), before);
}

TEST_F(MainWindowTest, OnlyWebAddressesAreOpenedAndManyOnRequest)
{
    edit([this](Engine& database) {
        database.queryForUUID(pond)->restoreResults(
            {result(u"file"_s, 900000000.0).withUrl(*Url::fromText(u"file:///etc/hostname"_s))}, {});
    });
    openAt(pond);
    list().selectRow(0);
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_TRUE(notice().contains(u"file:///etc/hostname"_s));
    list().selectRow(1);
    workspace.isWilling = false;
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_TRUE(notice().contains(u"xdg-open"_s));
    EXPECT_EQ(window->windowTitle(), u"QuarrySpotter (61 unread)"_s);
    workspace.isWilling = true;
    for (const auto& [answer, count] : {std::pair(QMessageBox::No, 0), std::pair(QMessageBox::Yes, 60)}) {
        list().selectAll();
        QTimer::singleShot(0, [which = answer] {
            qobject_cast<QMessageBox*>(QApplication::activeModalWidget())->button(which)->click();
        });
        QTest::keyClick(&list(), Qt::Key_Return);
        EXPECT_EQ(workspace.addresses.size(), count);
    }
}

TEST_F(MainWindowTest, TheDetailsCanBeReadCopiedAndPressed)
{
    edit([this](Engine& database) {
        database.queryForUUID(pond)->restoreResults(
            {result(u"long"_s, 900000000.0).withTextFromPage(u"word "_s.repeated(3000))}, {});
    });
    openAt(pond);
    list().selectRow(0);
    EXPECT_TRUE(detail().findChild<QLabel*>()->text().contains(u"no digest"_s));
    auto* const text = detail().findChild<QTextBrowser*>();
    text->verticalScrollBar()->setValue(50);
    QTest::mouseDClick(text->viewport(), Qt::LeftButton, {}, text->viewport()->rect().center());
    edit([this](Engine& database) {
        database.queryForUUID(pond)->restoreResults({result(u"aged"_s, 700000000.0)}, {});
    });
    ASSERT_TRUE(happens([this] { return list().model()->rowCount() == 62; }));
    EXPECT_EQ(text->verticalScrollBar()->value(), 50);
    text->setFocus();
    QTest::keyClick(text, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), u"word"_s);
    QTest::keyClick(text, Qt::Key_Space);
    EXPECT_EQ(current(), u"r60"_s);

    list().setFocus();
    const auto presses = [this](const QAction* action) {
        EXPECT_TRUE(happens([&] { return button(action)->isVisible(); }));
        for (int i = 0; i < 5 && QApplication::focusWidget() != button(action); ++i)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    };
    presses(window->actions().markUnread);
    EXPECT_TRUE(happens([&] { return !button(window->actions().markUnread)->isVisible(); }));
    EXPECT_EQ(QApplication::focusWidget(), button(window->actions().markRead)) << "it came in the other's place";
    presses(window->actions().markRead);
    EXPECT_TRUE(happens([&] { return !button(window->actions().markRead)->isVisible(); }));
    EXPECT_EQ(QApplication::focusWidget(), button(window->actions().markUnread));
    presses(window->actions().hideResult);
    EXPECT_EQ(list().model()->rowCount(), 61);
    list().selectAll();
    QTimer::singleShot(0, [] { // The click comes back when the menu is closed.
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Up);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
    });
    QTest::mouseClick(button(window->actions().rate[4]), Qt::LeftButton);
    EXPECT_EQ(list().model()->index(60, 0).data(ResultModel::RatingRole).toInt(), 5);
}

TEST_F(MainWindowTest, TheMenuKeyOffersTheCommandsOfANode)
{
    openAt(pond);
    list().selectRow(0);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {20, 20}, window->treePane().mapToGlobal(QPoint(20, 20)));
    QApplication::sendEvent(window->treePane().viewport(), &event);
    const auto menu = [] { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); };
    ASSERT_TRUE(happens([&menu] { return menu() && menu()->windowHandle()->isExposed(); }));
    QTest::qWait(0);
    EXPECT_TRUE(menu()->actions().contains(window->actions().renameNode));
    screenshot(u"context-menu"_s);
    menu()->close();
}

TEST_F(MainWindowTest, TheNextWindowIsAsTheLastOneWasLeft)
{
    open();
    window->resize(900, 650);
    clickTree(u"Garden"_s);
    QTest::keyClick(&window->treePane(), Qt::Key_Right);
    clickTree(u"pond"_s);
    window->resultsPane().setOrder(6);
    QTest::qWait(0);
    const QSize size = window->size();
    const int order = window->resultsPane().order();
    bool isClosed = false;
    QObject::connect(window.get(), &MainWindow::closed, [&isClosed] { isClosed = true; });
    window->close();
    EXPECT_FALSE(window->isVisible());
    ASSERT_TRUE(happens([&isClosed] { return isClosed; }));
    window.reset();
    open();
    EXPECT_EQ(window->size(), size);
    EXPECT_EQ(window->treePane().currentUuid(), pond);
    EXPECT_TRUE(treeRow(u"pond"_s).isValid());
    EXPECT_EQ(window->resultsPane().order(), order);
}

TEST_F(MainWindowTest, WhatCannotBeSavedHoldsBackARefreshAndTheEnd)
{
    openAt(pond);
    int closed = 0;
    QObject::connect(window.get(), &MainWindow::closed, [&closed] { ++closed; });
    files.failWrites = true;
    QTest::keyClick(&list(), Qt::Key_N);
    const auto says = [this](const char* words) {
        NoticeBar& notice = *window->findChild<NoticeBar*>();
        const QList<QLabel*> labels = notice.findChildren<QLabel*>();
        return notice.isVisible() && std::any_of(labels.begin(), labels.end(), [words](const QLabel* label) {
                   return label->text().contains(QLatin1String(words));
               });
    };
    EXPECT_TRUE(happens([&] { return says("could not be saved: cannot write") && says("They are kept here"); }));
    window->actions().refreshAll->trigger();
    ASSERT_TRUE(happens([&] { return says("No refresh was started"); }));
    screenshot(u"not-refreshed"_s);
    const auto answer = [this](QMessageBox::StandardButton button) {
        const auto question = [this] { return window->findChild<QMessageBox*>(); };
        window->close();
        ASSERT_TRUE(happens([&] { return question() && question()->isVisible(); }));
        EXPECT_TRUE(window->isVisible());
        screenshot(u"not-saved"_s);
        files.failWrites = button == QMessageBox::Cancel;
        QTest::mouseClick(question()->button(button), Qt::LeftButton);
        EXPECT_TRUE(happens([&] { return !question(); }));
    };
    answer(QMessageBox::Cancel);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(closed, 0);
    answer(QMessageBox::Retry);
    EXPECT_TRUE(happens([&closed] { return closed == 1; }));
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(saves());

    // Who opens it while the last changes are being saved has it back.
    window->bringToFront({});
    QTest::keyClick(&list(), Qt::Key_N);
    window->close();
    window->bringToFront({});
    EXPECT_TRUE(saves());
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(closed, 1);
}

TEST_F(MainWindowTest, OnADarkDesktopEverythingCanBeRead)
{
    const QPalette before = QApplication::palette();
    QApplication::setPalette(darkPalette());
    openAt(pond);
    list().selectRow(3);
    const QRect unread = list().visualRect(list().model()->index(1, 0));
    const QImage row = seen(*list().viewport(), unread);
    EXPECT_GT(pixelsLike(QColor(30, 30, 30), row), row.width() * row.height() / 2);
    EXPECT_GT(pixelsLike(QColor(235, 235, 235), row, {}, 20), 10);
    screenshot(u"main-window-dark"_s);
    QApplication::setPalette(before);
}

} // namespace
} // namespace quarry::test
