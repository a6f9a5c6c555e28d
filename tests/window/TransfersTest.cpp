#include "engines/SearchServicesFile.h"
#include "exchange/Imports.h"
#include "support/LoopbackServer.h"
#include "window/NodeTransfers.h"
#include "window/WindowActions.h"
#include "window/WindowRig.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include <future>

using namespace quarry;
using namespace quarry::test;

namespace {

const QString Bread = QStringLiteral("bread");

QStringList names(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

TEST(TransfersTest, AnExportGoesWhereTheDialogSaysAndNeverIntoTheDatabasesFolder)
{
    WindowRig rig([](const QueryCorePtr& root) {
        root->addChild(QueryCore::initWithQuery(Bread));
        root->addChild(QueryCore::initWithQuery(QStringLiteral("pond")));
    });
    rig.select(Bread);
    const auto exportTo = [&](const QString& file, const QString& suggested) {
        rig.window->actions().exportNode->trigger();
        auto* const dialog = qobject_cast<QFileDialog*>(rig.sheet());
        auto* const name = dialog->findChild<QLineEdit*>();
        EXPECT_EQ(name->text().section(u'/', -1), suggested);
        name->setText(file);
        QTest::keyClick(name, Qt::Key_Return);
    };
    const QString file = rig.home.path() + QStringLiteral("/kept.qsexport");
    exportTo(file, Bread);
    ASSERT_TRUE(happens([&] { return rig.notice().contains(QLatin1String("kept.qsexport")); }));
    EXPECT_EQ(readImport(contentOf(file), QString()).nodes.size(), 1U);

    rig.window->treePane().selectAll();
    const QString both = rig.home.path() + QStringLiteral("/both.qsexport");
    exportTo(both, QStringLiteral("QuarrySpotter"));
    ASSERT_TRUE(happens([&] { return rig.notice().contains(QLatin1String("both.qsexport")); }));
    EXPECT_EQ(readImport(contentOf(both), QString()).nodes.size(), 2U);
    EXPECT_EQ(rig.stored(Bread)->parent()->childs()->size(), 2) << "the tree is as it was";

    exportTo(rig.home->supportFolder() + QStringLiteral("/Database.csv"), QStringLiteral("QuarrySpotter"));
    ASSERT_TRUE(happens([&] { return rig.notice().contains(QLatin1String("Nothing was exported")); }));
    EXPECT_FALSE(QFile::exists(rig.home->supportFolder() + QStringLiteral("/Database.csv")));
}

class ImportTest : public testing::Test {
protected:
    ImportTest()
    {
        held = file("slow", QStringLiteral("snail"));
        rig.files.afterRead = [this](const QString& path) {
            if (path == held)
                letGo.wait();
        };
        EXPECT_TRUE(writeFile(path("broken"), "<opml"));
    }
    QString path(const char* name) { return rig.home.path() + u'/' + QLatin1String(name); }
    QString file(const char* name, const QString& query)
    {
        EXPECT_TRUE(writeFile(path(name), "<opml><body><outline text=\"" + query.toUtf8() + "\"/></body></opml>"));
        return path(name);
    }
    void open(const QStringList& files) { rig.window->openFiles(files); }

    QString held;
    std::promise<void> letGoNow;
    std::shared_future<void> letGo = letGoNow.get_future().share();
    WindowRig rig;
};

TEST_F(ImportTest, FilesComeInOneAfterTheOtherWhileTheWindowGoesOn)
{
    open({held, path("broken"), path("none"), file("last", QStringLiteral("hare"))});
    auto* const sign = qobject_cast<QProgressDialog*>(rig.sheet());
    ASSERT_TRUE(sign);
    keepPicture(sign, QStringLiteral("import-progress"));
    letGoNow.set_value();
    ASSERT_TRUE(happens([&] { return rig.node(QStringLiteral("hare")) != nullptr; }));
    for (const char* const told : {"slow: 1 queries", "broken was not", "none was not", "last: 1 queries"})
        EXPECT_TRUE(rig.notice().contains(QLatin1String(told))) << rig.notice().toStdString();
    EXPECT_TRUE(rig.stored(QStringLiteral("snail")));
    rig.undo();
    EXPECT_FALSE(rig.node(QStringLiteral("hare")));
    EXPECT_TRUE(rig.node(QStringLiteral("snail"))) << "each is a change of its own";
    keepPicture(rig.window.get(), QStringLiteral("imported"));
}

TEST_F(ImportTest, AfterAStopNothingMoreComesIn)
{
    open({held, file("last", QStringLiteral("hare"))});
    QTest::mouseClick(rig.sheet()->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_TRUE(rig.notice().contains(QLatin1String("slow was not imported"))) << rig.notice().toStdString();
    letGoNow.set_value();
    open({file("later", QStringLiteral("fox"))});
    ASSERT_TRUE(happens([&] { return rig.node(QStringLiteral("fox")) != nullptr; }));
    EXPECT_EQ(rig.window->tree().root()->numberOfChilds(), 1);
}

TEST_F(ImportTest, ClosingTheWindowDoesNotWaitForAFile)
{
    open({held});
    bool isClosed = false;
    QObject::connect(rig.window.get(), &MainWindow::closed, [&isClosed] { isClosed = true; });
    rig.window->close();
    EXPECT_TRUE(happens([&isClosed] { return isClosed; }));
    letGoNow.set_value();
}

TEST(TransfersTest, OnlyNewResultsAreExportedWhereTheKindOfFileSaysSo)
{
    WindowRig rig([](const QueryCorePtr& root) {
        const QueryCorePtr bread = QueryCore::initWithQuery(Bread);
        root->addChild(bread);
        bread->restoreResults({resultAt(QStringLiteral("http://old.example/")),
                               resultAt(QStringLiteral("http://new.example/")).withNewSincePrevious(true)},
                              {});
    });
    rig.select(Bread);
    struct Case {
        const char16_t* kind;
        const char* file;
        bool hasOld;
    };
    const Case cases[] = {{u"214_Kind json", "all.json", true},
                          {u"214_Kind new json", "new.json", false},
                          {u"214_Kind new csv", "new.csv", false},
                          {u"214_Kind new atom", "new.atom", false},
                          {u"214_Kind new csv", "everything.qsexport", true}};
    for (const Case& each : cases) {
        const QString file = rig.home.path() + u'/' + QString::fromLatin1(each.file);
        rig.window->actions().exportNode->trigger();
        auto* const dialog = qobject_cast<QFileDialog*>(rig.sheet());
        const QStringList kinds = dialog->nameFilters();
        dialog->selectNameFilter(kinds.filter(rig.texts.text(QString::fromUtf16(each.kind))).value(0));
        auto* const name = dialog->findChild<QLineEdit*>();
        name->setText(file);
        QTest::keyClick(name, Qt::Key_Return);
        ASSERT_TRUE(happens([&] { return rig.notice().contains(file); })) << each.file;
        const QByteArray content = contentOf(file);
        EXPECT_TRUE(content.contains("new.example")) << each.file;
        EXPECT_EQ(content.contains("old.example"), each.hasOld) << each.file;
        ASSERT_TRUE(happens([&] { return rig.window->findChildren<QFileDialog*>().isEmpty(); }));
    }
}

TEST(TransfersTest, ClosingAsksBeforeItDropsEveryExportThatRuns)
{
    WindowRig rig([](const QueryCorePtr& root) { root->addChild(QueryCore::initWithQuery(Bread)); });
    const QString first = rig.home.path() + QStringLiteral("/first.json");
    auto& transfers = *rig.window->findChild<NodeTransfers*>();
    for (const auto& [answer, isGone] :
         {std::pair(QMessageBox::Cancel, false), std::pair(QMessageBox::Discard, true)}) {
        transfers.exportTo({}, first, ExportFormat::Json, ExportedResults::All);
        transfers.exportTo({}, rig.home.path() + QStringLiteral("/second.json"), ExportFormat::Json,
                           ExportedResults::All);
        QTimer::singleShot(0, [which = answer] {
            qobject_cast<QMessageBox*>(QApplication::activeModalWidget())->button(which)->click();
        });
        EXPECT_EQ(rig.window->close(), isGone);
        ASSERT_TRUE(happens([&transfers] { return !transfers.isExporting(); }));
    }
}

/// A server whose second page does not come before it is let go.
class OfflineTest : public testing::Test {
protected:
    OfflineTest()
        : server([this](const QByteArray& head, const LoopbackServer::Send& send) {
              if (head.startsWith("GET /slow")) {
                  isHeld = true;
                  server.waitForClient();
              } else {
                  send(LoopbackServer::reply("<p>Where the <b>bread</b> is.</p>"));
              }
          }),
          rig([this](const QueryCorePtr& root) { fill(root); })
    {
        const QString origin = QString::fromLatin1(server.address(""));
        EXPECT_EQ(SearchServicesFile(rig.home, rig.files).reachAllAt(origin), QString());
        rig.select(Bread);
    }
    void fill(const QueryCorePtr& root)
    {
        const auto result = [this](const char* path, const char* name) {
            return resultAt(QString::fromLatin1(server.address(path)))
                .withEngineId(QStringLiteral("1"))
                .withLinkUuid(QString::fromLatin1(name));
        };
        const QueryCorePtr bread = QueryCore::initWithQuery(Bread);
        root->addChild(bread);
        bread->restoreResults({result("/a", "A"), result("/b", "B")}, {});
        const QueryCorePtr slow = QueryCore::initWithQuery(QStringLiteral("slow"));
        root->addChild(slow);
        slow->restoreResults({result("/slow", "S"), result("/c", "C")}, {});
    }
    NodeTransfers& transfers() { return *rig.window->findChild<NodeTransfers*>(); }

    std::atomic<bool> isHeld = false;
    LoopbackServer server;
    WindowRig rig;
    QString folder = rig.home.path() + QStringLiteral("/Reading");
};

TEST_F(OfflineTest, PagesAreCopiedAndCounted)
{
    transfers().copyTo({rig.node(Bread)->UUID()}, folder);
    ASSERT_TRUE(happens([&] { return !transfers().isCopying(); }));
    EXPECT_TRUE(rig.notice().contains(QLatin1String("Queries copied: 1, pages: 2"))) << rig.notice().toStdString();
    const QString copy = folder + u'/' + rig.node(Bread)->UUID();
    EXPECT_EQ(contentOf(copy + QStringLiteral("/A")), "Where the bread is.");
    EXPECT_EQ(names(copy).size(), 2);
}

TEST_F(OfflineTest, StopBreaksOffAndKeepsNothingUnfinished)
{
    transfers().copyTo({}, folder); // Everything: the first query is complete by then.
    ASSERT_TRUE(happens([&] { return isHeld.load(); }));
    ASSERT_TRUE(happens([&] { return rig.sheet() != nullptr; }));
    keepPicture(rig.sheet(), QStringLiteral("offline-progress"));
    QTest::mouseClick(rig.sheet()->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_EQ(qobject_cast<QProgressDialog*>(rig.sheet())->labelText(), QStringLiteral("Stopping…"));
    ASSERT_TRUE(happens([&] { return !transfers().isCopying(); }));
    EXPECT_EQ(names(folder), QStringList{rig.node(Bread)->UUID()});
    EXPECT_TRUE(rig.notice().contains(QLatin1String("Stopped"))) << rig.notice().toStdString();
    keepPicture(rig.window.get(), QStringLiteral("offline-stopped"));
}

TEST_F(OfflineTest, EveryWayToQuitEndsARunningCopyFirst)
{
    int ends = 0;
    const auto ended = [&] {
        ++ends;
        EXPECT_FALSE(transfers().isCopying());
    };
    QObject::connect(rig.window.get(), &MainWindow::closed, rig.window.get(), ended);
    const std::function<void()> ways[] = {[&] { rig.window->finish([&](bool) { ended(); }); },
                                          [&] { rig.window->close(); }};
    for (const std::function<void()>& quit : ways) {
        const int before = ends;
        isHeld = false;
        transfers().copyTo({rig.node(QStringLiteral("slow"))->UUID()}, folder);
        ASSERT_TRUE(happens([&] { return isHeld.load(); }));
        quit();
        EXPECT_EQ(ends, before) << "it waits for the copy's reply";
        EXPECT_TRUE(rig.window->isVisible());
        ASSERT_TRUE(happens([&] { return ends == before + 1; }));
        EXPECT_EQ(names(folder), QStringList());
    }
}

} // namespace
