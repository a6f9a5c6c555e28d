#include "UpdaterRig.h"
#include "archive/ArchiveReader.h"
#include "blacklist/BlacklistStore.h"
#include "database/Schedule.h"
#include "support/SessionBusDaemon.h"

#include <QElapsedTimer>

#include <signal.h>

namespace quarry {
namespace {

using test::UpdaterTest;
using enum SearchService;

const QStringList Progress = {u"--progress"_qs};

QJsonObject about(const char* name, const char* title)
{
    return {{u"event"_qs, QString::fromLatin1(name)}, {u"title"_qs, QString::fromLatin1(title)}};
}

TEST_F(UpdaterTest, BringsWhatIsNewAndOnlyThatWhenItIsTimeAgain)
{
    addQuery(u"bees"_qs);
    services.results = {{Google, {u"http://h/g"_qs}}, {Ixquick, {u"http://h/i"_qs, u"http://h/g?again"_qs}}};
    EXPECT_EQ(Schedule(home, files).setPeriodicityMinutes(45), QString());
    Ended ended = run(Progress);
    EXPECT_EQ(ended.status, 0) << qPrintable(ended.text);
    EXPECT_EQ(outcomes(ended), QStringList({u"bees updated 2"_qs}));
    EXPECT_EQ(ended.events.first()[u"queries"].toInt(), 1);
    EXPECT_EQ(ended.events.last()[u"added"].toInt(), 2);
    EXPECT_EQ(query(u"bees"_qs)->nbUnreadItem(), 2);
    const Schedule::Settings schedule = Schedule(home, files).read(SystemClock().now());
    EXPECT_EQ(schedule.periodicityMinutes, 45);
    EXPECT_GE(schedule.lastUpdate, query(u"bees"_qs)->date());
}

TEST_F(UpdaterTest, AsksAgainByItsClock)
{
    addQuery(u"bees"_qs);
    services.results = {{Google, {u"http://h/g"_qs}}};
    EXPECT_EQ(run({}).status, 0);
    services.results = {{Google, {u"http://h/new"_qs}}};
    const std::size_t requests = services.requestCount();
    EXPECT_EQ(outcomes(run(Progress)), QStringList({u"bees recent 0"_qs}));
    EXPECT_EQ(outcomes(run(Progress + QStringList{u"--clock-offset"_qs, u"1000"_qs})),
              QStringList({u"bees updated 0"_qs}));
    EXPECT_EQ(services.requestCount(), requests) << "the page cache has it";
    EXPECT_EQ(outcomes(run(Progress + QStringList{u"--clock-offset=24000"_qs})), QStringList({u"bees updated 1"_qs}));
    EXPECT_EQ(query(u"bees"_qs)->nbItems(), 2);
}

TEST_F(UpdaterTest, NamesAServiceThatCannotBeReadAndGoesOn)
{
    addQuery(u"bees"_qs);
    addQuery(u"wasps"_qs);
    services.results = {{Yahoo, {u"http://h/y"_qs}}};
    pointServicesAt({Google});
    Ended ended = run({});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.text.count(u"Google could not be read"_qs), 2) << qPrintable(ended.text);
    EXPECT_TRUE(ended.text.contains(u"Google could not be read 2 times"_qs)) << qPrintable(ended.text);
    EXPECT_TRUE(ended.events.isEmpty());
    EXPECT_EQ(query(u"bees"_qs)->nbItems(), 1);

    pointServicesAt({Google, Yahoo, Bing, Exalead, Ixquick});
    ended = run(Progress + QStringList{u"--clock-offset=24000"_qs, u"wasps"_qs});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(outcomes(ended), QStringList({u"wasps unreachable 0"_qs}));
    EXPECT_EQ(query(u"wasps"_qs)->nbItems(), 1);
}

TEST_F(UpdaterTest, ABadUrlExpressionEndsItsOwnUpdateWithALine)
{
    services.results = {{Google, {u"http://h/docs/1"_qs, u"http://h/blog/1"_qs}}};
    edit([](const QueryCorePtr& root) {
        for (const QString& expression : {u"/docs/"_qs, u"/docs/("_qs})
            root->addChild(QueryCore::initWithAdvancedQuery(u"bees "_qs + expression, 1, QString(), expression));
    });
    const Ended ended = run({});
    EXPECT_EQ(ended.status, 3);
    EXPECT_TRUE(ended.text.contains(
        u"bees /docs/(: failed: its URL expression \"/docs/(\" is not valid: Parentheses '( )' not balanced\n"_qs))
        << qPrintable(ended.text);
    EXPECT_EQ(query(u"bees /docs/"_qs)->nbItems(), 1);
    EXPECT_EQ(query(u"bees /docs/("_qs)->nbItems(), 0);
    EXPECT_EQ(query(u"bees /docs/("_qs)->date(), Date::reference());
}

/// A rule as a query keeps it.
FilterObject privateRule(const QString& text)
{
    const StoredBlacklist list{{BlacklistFilter::initWithRule(text, BlacklistType::Text, false, false)}, {}};
    const auto archive = KeyedArchive::open(archivedBlacklist(list)).archive;
    ArchiveReader reader(archive);
    return std::make_shared<const OpaqueObject>(archive, reader.list(reader.root())->at(0));
}

TEST_F(UpdaterTest, CountsWhatTheBlacklistCatchesAndLogsItsBadExpressions)
{
    services.results = {{Google,
                         {u"http://both.example/ads"_qs, u"http://ads.example/ads"_qs, u"http://own.example/private"_qs,
                          u"http://good.example/1"_qs, u"http://good.example/2"_qs}}};
    edit([](const QueryCorePtr& root) {
        const QueryCorePtr bees = QueryCore::initWithQuery(u"bees"_qs);
        bees->excludeURLString(u"http://both.example/"_qs);
        bees->addFilter(privateRule(u"/private"_qs));
        root->addChild(bees);
    });
    BlacklistStore blacklist(home, files);
    const auto addRule = [&](const QString& rule, qint64 type) {
        EXPECT_EQ(blacklist.change([&](BlacklistManager& list) {
            list.addToBlacklist(BlacklistFilter::initWithRule(rule, type, true, false));
            return true;
        }),
                  QString());
    };
    const auto linksOf = [](const Ended& ended) {
        QStringList lines;
        for (const QJsonObject& event : ended.events) {
            if (event[u"event"] == u"query-finished"_qs)
                lines.append(u"%1 %2 %3 %4"_qs.arg(event[u"title"].toString())
                                 .arg(event[u"added"].toInt())
                                 .arg(event[u"excluded"].toInt())
                                 .arg(event[u"blacklisted"].toInt()));
        }
        return lines;
    };
    addRule(u"/ADS"_qs, BlacklistType::Text);
    EXPECT_EQ(linksOf(run(Progress)), QStringList({u"bees 2 1 1"_qs}));
    EXPECT_FALSE(QFileInfo::exists(home->logFile()));

    services.results[Google] += {u"http://good.example/3"_qs, u"http://good.example/4"_qs};
    addRule(u"good.example/3"_qs, BlacklistType::Text);
    addRule(u"(unbalanced"_qs, BlacklistType::RegularExpression);
    EXPECT_EQ(linksOf(run(Progress + QStringList{u"--clock-offset=24000"_qs})), QStringList({u"bees 1 1 2"_qs}));
    // Of the links that were asked about, one came past the rules before.
    EXPECT_EQ(test::contentOf(home->logFile()).count("Error in Regexp '(unbalanced': Parentheses '( )' not balanced\n"),
              1);
}

TEST_F(UpdaterTest, AnInterruptEndsItAtOnceAndKeepsWhatWasFound)
{
    for (const QString& text : {u"quick"_qs, u"hangs"_qs, u"waits"_qs})
        addQuery(text);
    services.results = {{Google, {u"http://h/g"_qs}}, {Bing, {u"http://h/b"_qs}}};
    services.hold("p=hangs");
    QProcess process;
    start(process, Progress);
    ASSERT_TRUE(waitForEvent(process, about("query-finished", "quick")));
    ASSERT_TRUE(waitForEvent(process, about("service-answered", "hangs")));
    QElapsedTimer timer;
    timer.start();
    // Both the terminal and a program that started it pass an interrupt on.
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    const Ended ended = end(process);
    EXPECT_LT(timer.elapsed(), 5000) << "a transfer that hangs lasts a minute";
    EXPECT_EQ(ended.status, 5) << qPrintable(ended.text);
    EXPECT_EQ(query(u"quick"_qs)->nbItems(), 2);
    EXPECT_EQ(query(u"hangs"_qs)->nbItems(), 0);
    EXPECT_EQ(query(u"hangs"_qs)->date(), Date::reference());
    EXPECT_FALSE(Schedule(home, files).read(SystemClock().now()).lastUpdate);
}

TEST_F(UpdaterTest, EndsWhenEveryProgramOfTheProductIsAskedTo)
{
    const test::SessionBusDaemon daemon;
    addQuery(u"hangs"_qs);
    services.hold("p=hangs");
    QProcess process;
    start(process, Progress);
    ASSERT_TRUE(waitForEvent(process, about("service-answered", "hangs")));
    QElapsedTimer timer;
    timer.start();
    // It may not listen yet the first time.
    while (process.state() == QProcess::Running && timer.elapsed() < 60000) {
        QProcess::execute(u"dbus-send"_qs,
                          {u"--session"_qs, u"--type=signal"_qs, u"/com/zep/QuarrySpotter/Notifications"_qs,
                           u"com.zep.QuarrySpotter.Notifications.Posted"_qs,
                           u"string:QUIT_EVERYBODY_NOTIFICATION QS1"_qs, u"dict:string:string:by,a test"_qs});
        process.waitForFinished(100);
    }
    EXPECT_EQ(end(process).status, 5);
}

TEST_F(UpdaterTest, WhatOthersEditMeanwhileSurvivesWithWhatItFound)
{
    for (const QString& text : {u"bees"_qs, u"gone"_qs})
        addQuery(text);
    services.results = {{Google, {u"http://h/old"_qs, u"http://out.org/"_qs}}};
    EXPECT_EQ(run({}).status, 0);

    services.results = {{Google, {u"http://h/new"_qs, u"http://out.org/new"_qs}}};
    services.hold("/search?client=");
    QProcess process;
    start(process, Progress + QStringList{u"--clock-offset=24000"_qs});
    ASSERT_TRUE(waitForEvent(process, about("service-asked", "bees")));
    edit([](const QueryCorePtr& root) {
        const QueryCorePtr bees = root->childs()->at(0);
        bees->setTitle(u"Bees"_qs);
        bees->markAllItemAsRead();
        bees->excludeURLString(u"out.org"_qs);
        root->removeChild(root->childs()->at(1));
        root->addChild(QueryCore::initWithQuery(u"added"_qs));
    });
    services.release();
    EXPECT_EQ(end(process).status, 0);
    const QueryCorePtr bees = query(u"Bees"_qs);
    ASSERT_TRUE(bees);
    EXPECT_EQ(bees->nbItems(), 2);
    EXPECT_EQ(bees->nbUnreadItem(), 1);
    EXPECT_GT(bees->date()->secondsSince(SystemClock().now()), 20000);
    EXPECT_FALSE(query(u"gone"_qs));
    EXPECT_EQ(query(u"added"_qs)->date(), Date::reference());
}

TEST_F(UpdaterTest, TwoNeverRunAtOnceAndAKilledOneLeavesNothingBehind)
{
    addQuery(u"bees"_qs);
    services.results = {{Google, {u"http://h/g"_qs}}};
    services.hold("/search?client=");
    const QByteArray before = test::contentOf(home->databaseFile());
    QProcess first;
    start(first, Progress);
    ASSERT_TRUE(waitForEvent(first, about("service-asked", "bees")));
    const Ended other = run({});
    EXPECT_EQ(other.status, 4);
    EXPECT_TRUE(other.text.contains(u"another refresh"_qs)) << qPrintable(other.text);
    first.kill();
    EXPECT_EQ(end(first).status, -1);
    EXPECT_EQ(test::contentOf(home->databaseFile()), before);

    services.release();
    EXPECT_EQ(run({}).status, 0);
    EXPECT_EQ(query(u"bees"_qs)->nbItems(), 1);
}

TEST_F(UpdaterTest, UpdatesWhatIsNamed)
{
    services.results = {{Google, {u"http://h/g"_qs}}};
    edit([](const QueryCorePtr& root) {
        const QueryCorePtr folder = QueryCore::initWithQueryFolder(u"folder"_qs);
        const QueryCorePtr paused = QueryCore::initWithQueryFolder(u"paused folder"_qs);
        const QueryCorePtr off = QueryCore::initWithQuery(u"off"_qs);
        for (const QueryCorePtr& node : {folder, paused, off, QueryCore::initWithQuery(u"twin"_qs)})
            root->addChild(node);
        folder->addChild(QueryCore::initWithQuery(u"inner"_qs));
        paused->addChild(QueryCore::initWithQuery(u"deep"_qs));
        paused->addChild(QueryCore::initWithQuery(u"twin"_qs));
        paused->setEnabled(false);
        off->setEnabled(false);
    });
    struct Case {
        QStringList names;
        int status;
        QStringList outcomes;
    };
    const QString beginning = query(u"folder"_qs)->UUID().left(13).toLower();
    for (const Case& c : {Case{{u"deep"_qs, beginning, u"INNER"_qs}, 0, {u"deep updated 1"_qs, u"inner updated 1"_qs}},
                          Case{{u"off"_qs, u"deep"_qs}, 3, {u"deep recent 0"_qs, u"off paused 0"_qs}},
                          Case{{u"paused folder"_qs}, 3, {u"paused folder paused 0"_qs}},
                          Case{{u"deep"_qs, u"twin"_qs}, 2, {}}, Case{{u"nothing of that name"_qs}, 2, {}}}) {
        const Ended ended = run(Progress + c.names);
        EXPECT_EQ(ended.status, c.status) << qPrintable(c.names.join(u' '));
        EXPECT_EQ(outcomes(ended), c.outcomes) << qPrintable(outcomes(ended).join(u'\n'));
        EXPECT_EQ(ended.events.last()[u"status"].toInt(), c.status);
    }
    EXPECT_FALSE(Schedule(home, files).read(SystemClock().now()).lastUpdate) << "that was no full refresh";
}

TEST_F(UpdaterTest, LeavesADatabaseAloneThatItCannotReadAndRefusesWrongUse)
{
    EXPECT_TRUE(test::writeFile(home->databaseFile(), "no database"));
    const Ended ended = run({});
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(ended.text.contains(u"cannot be read"_qs)) << qPrintable(ended.text);
    EXPECT_EQ(test::contentOf(home->databaseFile()), "no database");
    for (const QString& wrong : {u"--clock-offset=nan"_qs, u"--clock-offset=9e99"_qs, u"--home=/twice"_qs, u"-x"_qs})
        EXPECT_EQ(run({wrong}).status, 2) << qPrintable(wrong);
}

} // namespace
} // namespace quarry
