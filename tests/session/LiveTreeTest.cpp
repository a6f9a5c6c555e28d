#include "session/LiveTree.h"

#include "session/TreeEdits.h"
#include "support/ManualTimers.h"
#include "support/OwnDatabase.h"
#include "support/QtPrinting.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;
using namespace std::chrono_literals;

namespace {

class Heard final : public LiveTree::Listener {
public:
    void treeReplaced() override { ++replaced; }
    void treeEdited(const QStringList& queries, bool structure) override
    {
        edited = queries;
        structureChanged = structure;
    }
    void safetyChanged(LiveTree::Safety now, const QString& why) override
    {
        safety = now;
        reason = why;
    }

    int replaced = 0;
    QStringList edited;
    bool structureChanged = false;
    LiveTree::Safety safety = LiveTree::Safety::Loading;
    QString reason;
};

ResultRecord record(const char* name, const char* host)
{
    const QString text = QString::fromLatin1(name);
    return ResultRecord().withTitle(text).withLinkUuid(text).withVisible(true).withUrl(
        *Url::fromText(QStringLiteral("http://%1/%2").arg(QString::fromLatin1(host), text)));
}

/// A folder "Garden" with the query "pond" in it, and the query "bread" beside it.
class LiveTreeTest : public testing::Test, protected OwnDatabase {
protected:
    void SetUp() override
    {
        elsewhere([this](Engine& database) {
            const QueryCorePtr folder = database.addQuery(QStringLiteral("Garden"), true);
            const QueryCorePtr nested = QueryCore::initWithQuery(QStringLiteral("pond"));
            folder->addChild(nested);
            nested->restoreResults({record("a", "one.example"), record("b", "two.example"), record("c", "one.example")},
                                   {});
            const QueryCorePtr other = database.addQuery(QStringLiteral("bread"), false);
            garden = folder->UUID();
            pond = nested->UUID();
            bread = other->UUID();
        });
    }
    void open()
    {
        tree.start();
        ASSERT_TRUE(timers.runUntil([this] { return heard.safety != LiveTree::Safety::Loading; }));
    }
    void waitUntilSafe()
    {
        timers.advance(2s);
        ASSERT_TRUE(timers.runUntil([this] { return tree.safety() == LiveTree::Safety::Safe; }))
            << qPrintable(heard.reason);
    }
    [[nodiscard]] bool saves()
    {
        std::optional<bool> answer;
        tree.save([&answer](bool isSaved) { answer = isSaved; });
        EXPECT_TRUE(timers.runUntil([&answer] { return answer.has_value(); }));
        return answer.value_or(false);
    }
    /// As another program would change the file.
    void elsewhere(const std::function<void(Engine&)>& change)
    {
        clock.advance(5);
        edit(change);
    }
    /// The titles, or names, of a folder's children in the file.
    QStringList titlesInFile(const QString& folderUuid = {})
    {
        const std::unique_ptr<Engine> engine = openDatabase();
        QStringList titles;
        const QueryCorePtr folder = folderUuid.isEmpty() ? engine->currentRoot() : engine->queryForUUID(folderUuid);
        const QList<QueryCorePtr> childs = folder->childs().value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& child : childs)
            titles.append(child->title());
        return titles;
    }
    ResultSelection named(std::initializer_list<const char*> names)
    {
        ResultKeys keys;
        for (const char* name : names)
            keys.add(record(name, "any.example"));
        return {{pond, keys}};
    }

    ManualTimers timers;
    Heard heard;
    LiveTree tree{{home, clock, pauser, files, notifications, timers}, heard};
    QString garden;
    QString pond;
    QString bread;
};

TEST_F(LiveTreeTest, AnEditShowsAtOnceAndIsInTheFileSoonAfter)
{
    open();
    tree.edit(edits::setRead(true, named({"a", "c"})));
    EXPECT_EQ(tree.counts().of(pond).unread, 1);
    EXPECT_EQ(tree.counts().of(garden).unread, 1) << "a folder adds up";
    EXPECT_EQ(heard.edited, QStringList{pond});
    EXPECT_EQ(heard.safety, LiveTree::Safety::Pending);
    waitUntilSafe();
    EXPECT_EQ(openDatabase()->queryForUUID(pond)->nbUnreadItem(), 1);
}

TEST_F(LiveTreeTest, EditsSurviveWhatAnotherProgramWritesMeanwhile)
{
    open();
    tree.edit(edits::setHidden(true, named({"b"})));
    tree.edit(edits::rename(bread, QStringLiteral("Loaves")));
    elsewhere([this](Engine& database) {
        database.queryForUUID(pond)->restoreResults({record("d", "new.example")}, {});
        database.addQuery(QStringLiteral("stones"), false);
    });
    const int before = heard.replaced;
    waitUntilSafe();
    EXPECT_GT(heard.replaced, before) << "the other program's tree is shown";
    EXPECT_EQ(tree.counts().of(pond).results, 3);
    EXPECT_EQ(tree.counts().of(pond).hidden, 1);
    EXPECT_EQ(titlesInFile(),
              (QStringList{QStringLiteral("Garden"), QStringLiteral("Loaves"), QStringLiteral("stones")}));
}

TEST_F(LiveTreeTest, ALargeEditIsMadeElsewhereAndCountsInItsOrderAllTheSame)
{
    open();
    elsewhere(
        [this](Engine& database) { database.queryForUUID(pond)->restoreResults({record("d", "new.example")}, {}); });
    tree.edit(edits::setRead(true, named({"b"})));
    const edits::Reversible all = edits::markAllRead({pond}, LargeEditResults);
    tree.edit(all.change);
    EXPECT_EQ(tree.counts().of(pond).unread, 2) << "not on the thread that draws";
    tree.edit(edits::setRead(false, named({"a"})));
    EXPECT_TRUE(saves());
    using Counts = std::pair<qint64, qint64>;
    const auto unread = [this] {
        return Counts(tree.counts().of(garden).unread, openDatabase()->queryForUUID(pond)->nbUnreadItem());
    };
    EXPECT_EQ(unread(), Counts(2, 2)) << "a, which was marked last, and d, which nobody had seen";
    tree.edit(all.opposite);
    EXPECT_TRUE(saves());
    EXPECT_EQ(unread(), Counts(3, 3)) << "b was read before";
    tree.edit(all.change);
    tree.edit(all.opposite);
    tree.edit(all.change);
    EXPECT_TRUE(saves());
    EXPECT_EQ(unread(), Counts(1, 1));
}

TEST_F(LiveTreeTest, ARewrittenFileIsShownWithoutAnEdit)
{
    open();
    elsewhere([](Engine& database) { database.addQuery(QStringLiteral("stones"), false); });
    const int before = heard.replaced;
    timers.advance(1s);
    ASSERT_TRUE(timers.runUntil([&] { return heard.replaced > before; }));
    EXPECT_EQ(tree.root()->numberOfChilds(), 3);
}

TEST_F(LiveTreeTest, WhatCannotBeSavedIsKeptShownAndTriedAgain)
{
    open();
    const QString database = home->databaseFile();
    const QByteArray bytes = contentOf(database);
    ASSERT_TRUE(QFile::remove(database) && QDir().mkdir(database)) << "nothing can be renamed over a folder";
    tree.edit(edits::rename(bread, QStringLiteral("Loaves")));
    EXPECT_FALSE(saves());
    EXPECT_NE(tree.fault(), QString());
    ASSERT_TRUE(QDir().rmdir(database) && writeFile(database, bytes));
    EXPECT_TRUE(saves());
    EXPECT_EQ(tree.node(bread)->title(), QStringLiteral("Loaves"));
    EXPECT_EQ(titlesInFile().last(), QStringLiteral("Loaves"));
}

TEST_F(LiveTreeTest, ADamagedFileIsNotWrittenOverUntilTheUserDecides)
{
    const QByteArray good = contentOf(home->databaseFile());
    const QByteArray damaged = good.left(good.size() / 2);
    ASSERT_TRUE(writeFile(home->databaseFile(), damaged));
    open();
    EXPECT_TRUE(tree.isDamaged());
    EXPECT_NE(tree.fault(), QString());
    EXPECT_EQ(contentOf(tree.damagedCopy()), damaged);
    const QueryCorePtr added = QueryCore::initWithQuery(QStringLiteral("late"));
    tree.edit(edits::insertion(added, {}, 0).change);
    EXPECT_EQ(tree.root()->numberOfChilds(), 0) << "there is nothing to edit";
    EXPECT_TRUE(saves());
    EXPECT_EQ(contentOf(home->databaseFile()), damaged);

    clock.advance(5);
    ASSERT_TRUE(QFile::remove(home->databaseFile()) && writeFile(home->databaseFile(), good));
    tree.checkFile();
    ASSERT_TRUE(timers.runUntil([this] { return !tree.isDamaged(); })) << "a backup was put in its place";
    EXPECT_EQ(tree.root()->numberOfChilds(), 2);
    EXPECT_EQ(tree.fault(), QString());

    // Edits that were not saved yet wait as well.
    tree.edit(edits::rename(bread, QStringLiteral("Loaves")));
    ASSERT_TRUE(QFile::remove(home->databaseFile()) && writeFile(home->databaseFile(), damaged));
    EXPECT_FALSE(saves());
    ASSERT_TRUE(timers.runUntil([this] { return tree.isDamaged(); }));
    EXPECT_EQ(contentOf(home->databaseFile()), damaged);
    tree.replaceDamaged();
    ASSERT_TRUE(timers.runUntil([this] { return !tree.isDamaged() && tree.safety() == LiveTree::Safety::Safe; }));
    EXPECT_EQ(titlesInFile(), QStringList());
    EXPECT_EQ(contentOf(tree.damagedCopy()), damaged);
}

TEST_F(LiveTreeTest, EveryChangeIsUndoneByItsOpposite)
{
    open();
    const auto describe = [this] {
        QStringList lines;
        const std::function<void(const QueryCorePtr&)> visit = [&](const QueryCorePtr& node) {
            QStringList keys;
            for (const ResultRecord& each : node->results().value_or(ResultList()))
                keys.append(*each.title() + QLatin1String(each.isRead() ? "r" : "") +
                            QString::number(each.rating().value_or(0)));
            keys.sort();
            lines.append(node->title() + u':' + keys.join(u',') + u'-' + node->excludedHosts().join(u','));
            const QList<QueryCorePtr> childs = node->childs().value_or(QList<QueryCorePtr>());
            for (const QueryCorePtr& child : childs)
                visit(child);
        };
        visit(tree.root());
        return lines.join(u'\n');
    };
    const QueryCorePtr node = tree.node(pond);
    const edits::Place place = edits::placeOf(tree.root(), node);
    const edits::Place folderPlace = edits::placeOf(tree.root(), tree.node(garden));
    EXPECT_EQ(place.folderUuid, garden);
    EXPECT_EQ(folderPlace.folderUuid, QString());
    const edits::Reversible changes[] = {
        {edits::setRead(true, named({"a"})), edits::setRead(false, named({"a"}))},
        {edits::setHidden(true, named({"a", "b"})), edits::setHidden(false, named({"a", "b"}))},
        {edits::setRating(4, named({"b"})), edits::setRating(0, named({"b"}))},
        edits::exclusion(pond, {QStringLiteral("one.example"), QStringLiteral("two.example")}, 4),
        edits::removal(tree.root(), node),
        {edits::move(pond, QString(), 0), edits::move(pond, place.folderUuid, place.index)},
        {edits::move(garden, QString(), 5), edits::move(garden, folderPlace.folderUuid, folderPlace.index)},
        {edits::rename(bread, QStringLiteral("x")), edits::rename(bread, std::nullopt)},
    };
    const QString before = describe();
    for (const auto& [change, opposite] : changes) {
        tree.edit(change);
        const QString changed = describe();
        EXPECT_NE(changed, before);
        tree.edit(change);
        EXPECT_EQ(describe(), changed) << "applied twice it comes to the same";
        tree.edit(opposite);
        EXPECT_EQ(describe(), before) << "after " << qPrintable(changed);
    }
    tree.edit(edits::move(garden, garden, 0));
    EXPECT_EQ(describe(), before) << "a folder is not moved into itself";
    EXPECT_TRUE(saves());
    EXPECT_EQ(titlesInFile(), (QStringList{QStringLiteral("Garden"), QStringLiteral("bread")}));
    EXPECT_EQ(titlesInFile(garden), QStringList{QStringLiteral("pond")});
}

} // namespace
