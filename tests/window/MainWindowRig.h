#pragma once

#include "database/QueryDatabaseEngine.h"
#include "platform/QtEventTimers.h"
#include "support/QtPrinting.h"
#include "support/Screen.h"
#include "support/TemporaryHome.h"
#include "window/MainWindow.h"
#include "window/ResultsPane.h"
#include "window/TreePane.h"

#include <QApplication>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

namespace quarry::test {

/// A desktop that notes what it is asked to open.
class NotingWorkspace final : public Workspace {
public:
    bool openBundle(const QString&) override { return true; }
    bool openFile(const QString&, const QString&) override { return true; }
    bool openAddress(const QString& address) override
    {
        opened.append(address);
        return true;
    }
    bool launch(const QString&, const QStringList&) override { return true; }
    bool moveToTrash(const QString&) override { return true; }

    QStringList opened;
};

class NoBus final : public DistributedNotifications {
public:
    void post(const QString&, const UserInfo&) override {}
    void addObserver(const QString&, Observer) override {}
};

inline ResultRecord result(const QString& name, double found)
{
    return ResultRecord()
        .withTitle(name)
        .withLinkUuid(name)
        .withVisible(true)
        .withEngineId(QStringLiteral("5"))
        .withDateOfFind(Date(found))
        .withUrl(*Url::fromText(QStringLiteral("http://%1.example/page").arg(name)));
}

/// A window over a database with the folder "Garden" ("pond" with the results r1 to r60 in it, newest first r60), and
/// "bread" beside it, on the screen of the test.
class WindowTest : public testing::Test {
protected:
    /// As another program would change the file.
    void change(const std::function<void(QueryDatabaseEngine&)>& how)
    {
        QueryDatabaseEngine engine({home, clock, pauser, files, center, nullptr, {}},
                                   QueryDatabaseEngine::AtEnd::Discard);
        ASSERT_EQ(engine.edit([&how](QueryDatabaseEngine& database) {
            how(database);
            return QString();
        }),
                  QString());
    }
    void makeDatabase()
    {
        change([this](QueryDatabaseEngine& database) {
            const QueryCorePtr folder = database.addQuery(QStringLiteral("Garden"), true);
            const QueryCorePtr query = QueryCore::initWithQuery(QStringLiteral("pond"));
            folder->addChild(query);
            ResultList results;
            for (int i = 1; i <= 60; ++i)
                results.append(result(QStringLiteral("r%1").arg(i), 800000000.0 + i * 100000.0));
            query->restoreResults(results, {});
            garden = folder->UUID();
            pond = query->UUID();
            bread = database.addQuery(QStringLiteral("bread"), false)->UUID();
        });
    }
    /// Opens the window and waits until it shows the tree.
    MainWindow& open()
    {
        window = std::make_unique<MainWindow>(
            WindowParts{{home, clock, pauser, files, center, timers}, workspace, bus, texts, updater});
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
    QString child(const QString& name, const QString& folder = {})
    {
        QueryDatabaseEngine engine({home, clock, pauser, files, center, nullptr, {}},
                                   QueryDatabaseEngine::AtEnd::Discard);
        const QueryCorePtr parent = folder.isEmpty() ? engine.currentRoot() : engine.queryForUUID(folder);
        const QList<QueryCorePtr> childs = parent->childs().value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& each : childs) {
            if (each->title() == name)
                return each->UUID();
        }
        return {};
    }

    TemporaryHome home;
    SystemClock clock;
    ThreadPauser pauser;
    DiskFileStore files;
    NotificationCenter center;
    QtEventTimers timers;
    NotingWorkspace workspace;
    NoBus bus;
    StringTable texts{QStringLiteral(QUARRY_BUNDLE_DIR "/Resources"), {QStringLiteral("en")}, QStringLiteral("Window")};
    QString updater;
    QString garden;
    QString pond;
    QString bread;
    std::unique_ptr<MainWindow> window;
};

} // namespace quarry::test
