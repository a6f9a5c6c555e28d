#pragma once

#include "platform/QtEventTimers.h"
#include "support/DesktopDoubles.h"
#include "support/OwnDatabase.h"
#include "support/QtPrinting.h"
#include "support/Screen.h"
#include "window/MainWindow.h"
#include "window/NoticeBar.h"
#include "window/ResultsPane.h"
#include "window/TreePane.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <QWindow>

namespace quarry::test {

/// The texts as users get them, in the language ("en", "fr", "de").
inline StringTable windowTexts(const QString& language = QStringLiteral("en"))
{
    return StringTable(QStringLiteral(QUARRY_TEST_DATA "/../../resources"), {language}, QStringLiteral("Window"));
}

inline ResultRecord resultAt(const QString& address)
{
    return ResultRecord().withTitle(address).withLinkUuid(address).withVisible(true).withUrl(*Url::fromText(address));
}

/// Found at "http://NAME.example/page".
inline ResultRecord result(const QString& name, double found)
{
    return resultAt(QStringLiteral("http://%1.example/page").arg(name))
        .withTitle(name)
        .withLinkUuid(name)
        .withEngineId(QStringLiteral("5"))
        .withChecksum(QString(QLatin1String(""))) // As a service's records come.
        .withDateOfFind(Date(found));
}

/// The whole window over a home folder of its own, as a user has it, once it is opened; only the desktop around it is
/// made up.
class WindowDesk : public OwnDatabase {
public:
    /// Opens the window and waits until it shows the tree.
    MainWindow& open()
    {
        window = std::make_unique<MainWindow>(
            WindowParts{{home, clock, pauser, files, notifications, timers},
                        workspace,
                        distributed,
                        texts,
                        updater,
                        [this](bool automatic, qint64 minutes) {
                            followed.append((automatic ? QStringLiteral("on every ") : QStringLiteral("off every ")) +
                                            QString::number(minutes));
                        }});
        window->move(0, 0);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        // Without a window manager nobody gives it the keys.
        window->activateWindow();
        window->windowHandle()->requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get(), 10000));
        EXPECT_TRUE(happens([this] { return window->tree().safety() != LiveTree::Safety::Loading; }));
        return *window;
    }
    /// The sheet that is open, once there is one.
    [[nodiscard]] QDialog* sheet()
    {
        QDialog* open = nullptr;
        EXPECT_TRUE(happens([&] {
            const QList<QDialog*> dialogs = window->findChildren<QDialog*>();
            for (QDialog* const dialog : dialogs)
                open = dialog->isVisible() ? dialog : open;
            return open != nullptr;
        }));
        return open;
    }
    /// The node by its title, as a user looks for it.
    [[nodiscard]] QueryCorePtr node(const QString& title) { return find(window->tree().root(), title); }
    void select(const QString& title) { window->treePane().select(node(title)->UUID()); }
    /// Every text that the notice shows.
    [[nodiscard]] QString notice()
    {
        QString text;
        const QList<QLabel*> labels = window->findChild<NoticeBar*>()->findChildren<QLabel*>();
        for (const QLabel* const label : labels)
            text += label->isVisible() ? label->text() : QString();
        return text;
    }
    void undo()
    {
        const QList<QAction*> all = window->findChildren<QAction*>();
        for (QAction* const action : all) {
            if (action->shortcut() == QKeySequence(QKeySequence::Undo))
                return action->trigger();
        }
        ADD_FAILURE() << "no undo";
    }
    [[nodiscard]] bool saves()
    {
        std::optional<bool> answer;
        window->tree().save([&answer](bool isSaved) { answer = isSaved; });
        return happens([&answer] { return answer.has_value(); }) && *answer;
    }
    /// What is in the file, once everything is safe there.
    [[nodiscard]] QueryCorePtr stored(const QString& title)
    {
        EXPECT_TRUE(saves());
        _reader = openDatabase();
        return find(_reader->currentRoot(), title);
    }

    QtEventTimers timers;
    NotingWorkspace workspace;
    LocalNotifications distributed;
    StringTable texts = windowTexts();
    QString updater;
    QStringList followed; ///< What the agent was told about the schedule.

private:
    static QueryCorePtr find(const QueryCorePtr& below, const QString& title)
    {
        const QList<QueryCorePtr> childs = below->childs().value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& child : childs) {
            if (child->title() == title)
                return child;
            if (const QueryCorePtr found = find(child, title))
                return found;
        }
        return nullptr;
    }

    std::unique_ptr<QueryDatabaseEngine> _reader;

public:
    std::unique_ptr<MainWindow> window; ///< Last: it goes first.
};

/// The window, opened over a database that was filled before.
class WindowRig : public WindowDesk {
public:
    explicit WindowRig(const std::function<void(const QueryCorePtr& root)>& fill = {},
                       const QString& language = QStringLiteral("en"))
    {
        texts = windowTexts(language);
        if (fill)
            edit([&fill](Engine& database) { fill(database.currentRoot()); });
        open();
    }
};

/// A window over a database with the folder "Garden" ("pond" with the results r1 to r60 in it, newest first r60), and
/// "bread" beside it, on the screen of the test.
class WindowTest : public testing::Test, protected WindowDesk {
protected:
    void makeDatabase()
    {
        edit([this](Engine& database) {
            const QueryCorePtr folder = database.addQuery(QStringLiteral("Garden"), true);
            const QueryCorePtr query = QueryCore::initWithQuery(QStringLiteral("pond"));
            folder->addChild(query);
            ResultList results;
            for (int i = 1; i <= 60; ++i)
                results.append(result(QStringLiteral("r%1").arg(i), 800000000.0 + i * 100000.0));
            results.last() = results.last().withNewSincePrevious(true);
            query->restoreResults(results, {});
            garden = folder->UUID();
            pond = query->UUID();
            bread = database.addQuery(QStringLiteral("bread"), false)->UUID();
        });
    }
    MainWindow& openAt(const QString& uuid)
    {
        open().treePane().select(uuid);
        list().setFocus();
        return *window;
    }
    QTableView& list() { return window->resultsPane().list(); }
    /// A click on the middle of a row of the tree.
    void clickTree(const QString& title)
    {
        QTest::mouseClick(window->treePane().viewport(), Qt::LeftButton, {}, treeRow(title).center());
    }
    QRect treeRow(const QString& title)
    {
        const QModelIndexList found = window->treePane().model()->match(
            window->treePane().model()->index(0, 0), Qt::DisplayRole, title, 1, Qt::MatchExactly | Qt::MatchRecursive);
        return found.isEmpty() ? QRect() : window->treePane().visualRect(found.constFirst());
    }
    /// The titles that the list shows on the screen, from the top.
    QStringList shownTitles()
    {
        QStringList titles;
        for (int row = std::max(0, list().rowAt(0)); row < list().model()->rowCount(); ++row) {
            if (list().rowViewportPosition(row) < list().viewport()->height())
                titles.append(list().model()->index(row, 0).data().toString());
        }
        return titles;
    }
    QString current() { return list().currentIndex().siblingAtColumn(0).data().toString(); }
    /// What is on the screen in that part of a widget.
    static QImage seen(const QWidget& widget, const QRect& part)
    {
        QTest::qWait(0);
        QApplication::processEvents();
        return const_cast<QWidget&>(widget).grab(part).toImage();
    }
    /// The UUID of a folder's child in the file.
    QString child(const QString& name, const QString& folder = {})
    {
        const std::unique_ptr<Engine> engine = openDatabase();
        const QueryCorePtr parent = folder.isEmpty() ? engine->currentRoot() : engine->queryForUUID(folder);
        const QList<QueryCorePtr> childs = parent->childs().value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& each : childs) {
            if (each->title() == name)
                return each->UUID();
        }
        return {};
    }

    QString garden;
    QString pond;
    QString bread;
};

} // namespace quarry::test
