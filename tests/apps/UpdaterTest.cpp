#include "UpdaterRig.h"
#include "blacklist/BlacklistArchive.h"
#include "blacklist/BlacklistStore.h"
#include "database/Schedule.h"
#include "support/SessionBusDaemon.h"
#include "text/Data.h"

#include <QElapsedTimer>

#include <signal.h>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

using enum SearchService;

const QStringList Progress = {u"--progress"_s};

QJsonObject about(const char* name, const char* title)
{
    return {{u"event"_s, QString::fromLatin1(name)}, {u"title"_s, QString::fromLatin1(title)}};
}

TEST_F(UpdaterTest, BringsWhatIsNewAndOnlyThatWhenItIsTimeAgain)
{
    addQuery(u"bees"_s);
    services.results = {{Google, {u"http://h/g"_s}}, {Ixquick, {u"http://h/i"_s, u"http://h/g?again"_s}}};
    EXPECT_EQ(Schedule(home, files).setPeriodicityMinutes(45), QString());
    Ended ended = run(Progress);
    EXPECT_EQ(ended.status, 0) << qPrintable(ended.text);
    EXPECT_EQ(outcomes(ended), QStringList({u"bees updated 2"_s}));
    EXPECT_EQ(ended.events.first()[u"queries"].toInt(), 1);
    EXPECT_EQ(ended.events.last()[u"added"].toInt(), 2);
    EXPECT_EQ(query(u"bees"_s)->nbUnreadItem(), 2);
    const Schedule::Settings schedule = Schedule(home, files).read(SystemClock().now());
    EXPECT_EQ(schedule.periodicityMinutes, 45);
    EXPECT_GE(schedule.lastUpdate, query(u"bees"_s)->date());

    services.results = {{Google, {u"http://h/new"_s}}};
    const std::size_t requests = services.requestCount();
    EXPECT_EQ(outcomes(run(Progress)), QStringList({u"bees recent 0"_s}));
    EXPECT_EQ(outcomes(run(Progress + QStringList{u"--clock-offset"_s, u"1000"_s})),
              QStringList({u"bees updated 0"_s}));
    EXPECT_EQ(services.requestCount(), requests) << "the page cache has it";
    EXPECT_EQ(outcomes(run(Progress + QStringList{u"--clock-offset=24000"_s})), QStringList({u"bees updated 1"_s}));
    EXPECT_EQ(query(u"bees"_s)->nbItems(), 3);
}

TEST_F(UpdaterTest, NamesAServiceThatCannotBeReadAndGoesOn)
{
    addQuery(u"bees"_s);
    addQuery(u"wasps"_s);
    services.results = {{Yahoo, {u"http://h/y"_s}}};
    pointServicesAt({Google});
    Ended ended = run({});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.text.count(u"Google could not be read"_s), 2) << qPrintable(ended.text);
    EXPECT_TRUE(ended.text.contains(u"Google could not be read 2 times"_s)) << qPrintable(ended.text);
    EXPECT_TRUE(ended.events.isEmpty());
    EXPECT_EQ(query(u"bees"_s)->nbItems(), 1);

    pointServicesAt({Google, Yahoo, Bing, Exalead, Ixquick});
    ended = run(Progress + QStringList{u"--clock-offset=24000"_s, u"wasps"_s});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(outcomes(ended), QStringList({u"wasps unreachable 0"_s}));
    EXPECT_EQ(query(u"wasps"_s)->nbItems(), 1);
}

TEST_F(UpdaterTest, ABadUrlExpressionEndsItsOwnUpdateWithALine)
{
    services.results = {{Google, {u"http://h/docs/1"_s, u"http://h/blog/1"_s}}};
    edit([](const QueryCorePtr& root) {
        for (const QString& expression : {u"/docs/"_s, u"/docs/("_s})
            root->addChild(QueryCore::initWithAdvancedQuery(u"bees "_s + expression, 1, QString(), expression));
    });
    const Ended ended = run({});
    EXPECT_EQ(ended.status, 3);
    EXPECT_TRUE(ended.text.contains(
        u"bees /docs/(: failed: its URL expression \"/docs/(\" is not valid: Parentheses '( )' not balanced\n"_s))
        << qPrintable(ended.text);
    EXPECT_EQ(query(u"bees /docs/"_s)->nbItems(), 1);
    EXPECT_EQ(query(u"bees /docs/("_s)->nbItems(), 0);
    EXPECT_EQ(query(u"bees /docs/("_s)->date(), Date::reference());
}

TEST_F(UpdaterTest, ReadsThePagesBehindResultsOnItsOwnMachine)
{
    edit([](const QueryCorePtr& root) {
        const QueryCorePtr query = QueryCore::initWithAdvancedQuery(u"bees"_s, 3, QString(), QString());
        query->setComputeChecksum(true);
        root->addChild(query);
    });
    services.pages = {{"/with", "<p>Where the bees are.</p>"}, {"/without", "<p>Nothing.</p>"}};
    services.results = {{Google, {services.address("/with"), services.address("/without")}}};
    const Ended ended = run({u"--progress"_s});
    EXPECT_EQ(outcomes(ended), QStringList({u"bees updated 1"_s})) << qPrintable(ended.text);
    const ResultList results = query(u"bees"_s)->results().value_or(ResultList());
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0].urlText(), services.address("/with"));
    EXPECT_EQ(results[0].textFromPage(), u"Where the bees are."_s);
    EXPECT_EQ(results[0].checksum(), md5sum(u"<p>Where the bees are.</p>"_s));
}

TEST_F(UpdaterTest, CountsWhatTheBlacklistCatchesAndLogsItsBadExpressions)
{
    services.results = {{Google,
                         {u"http://both.example/ads"_s, u"http://ads.example/ads"_s, u"http://own.example/private"_s,
                          u"http://good.example/1"_s, u"http://good.example/2"_s}}};
    edit([](const QueryCorePtr& root) {
        const QueryCorePtr bees = QueryCore::initWithQuery(u"bees"_s);
        bees->excludeURLString(u"http://both.example/"_s);
        bees->addFilter(objectOfBlacklistRule({u"/private"_s, BlacklistType::Text, false, false}));
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
        const QJsonObject last = ended.events.last();
        return QList<int>{last[u"added"].toInt(), last[u"excluded"].toInt(), last[u"blacklisted"].toInt()};
    };
    addRule(u"/ADS"_s, BlacklistType::Text);
    EXPECT_EQ(linksOf(run(Progress)), QList<int>({2, 1, 1}));
    EXPECT_FALSE(QFileInfo::exists(home->logFile()));

    services.results[Google] += {u"http://good.example/3"_s, u"http://good.example/4"_s};
    addRule(u"good.example/3"_s, BlacklistType::Text);
    addRule(u"(unbalanced"_s, BlacklistType::RegularExpression);
    EXPECT_EQ(linksOf(run(Progress + QStringList{u"--clock-offset=24000"_s})), QList<int>({1, 1, 2}));
    // Of the links that were asked about, one came past the rules before.
    EXPECT_EQ(contentOf(home->logFile()).count("Error in Regexp '(unbalanced': Parentheses '( )' not balanced\n"), 1);
}

TEST_F(UpdaterTest, AnInterruptEndsItAtOnceAndKeepsWhatWasFound)
{
    for (const QString& text : {u"quick"_s, u"hangs"_s, u"waits"_s})
        addQuery(text);
    services.results = {{Google, {u"http://h/g"_s}}, {Bing, {u"http://h/b"_s}}};
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
    EXPECT_EQ(query(u"quick"_s)->nbItems(), 2);
    EXPECT_EQ(query(u"hangs"_s)->nbItems(), 0);
    EXPECT_EQ(query(u"hangs"_s)->date(), Date::reference());
    EXPECT_FALSE(Schedule(home, files).read(SystemClock().now()).lastUpdate);
}

TEST_F(UpdaterTest, EndsWhenEveryProgramOfTheProductIsAskedTo)
{
    const SessionBusDaemon daemon;
    addQuery(u"hangs"_s);
    services.hold("p=hangs");
    QProcess process;
    start(process, Progress);
    ASSERT_TRUE(waitForEvent(process, about("service-answered", "hangs")));
    askEverybodyToQuit(process);
    EXPECT_EQ(end(process).status, 5);
}

TEST_F(UpdaterTest, WhatOthersEditMeanwhileSurvivesWithWhatItFound)
{
    for (const QString& text : {u"bees"_s, u"gone"_s})
        addQuery(text);
    services.results = {{Google, {u"http://h/old"_s, u"http://out.org/"_s}}};
    EXPECT_EQ(run({}).status, 0);

    services.results = {{Google, {u"http://h/new"_s, u"http://out.org/new"_s}}};
    services.hold("/search?client=");
    QProcess process;
    start(process, Progress + QStringList{u"--clock-offset=24000"_s});
    ASSERT_TRUE(waitForEvent(process, about("service-asked", "bees")));
    edit([](const QueryCorePtr& root) {
        const QueryCorePtr bees = root->childs()->at(0);
        bees->setTitle(u"Bees"_s);
        bees->markAllItemAsRead();
        bees->excludeURLString(u"out.org"_s);
        root->removeChild(root->childs()->at(1));
        root->addChild(QueryCore::initWithQuery(u"added"_s));
    });
    services.release();
    EXPECT_EQ(end(process).status, 0);
    const QueryCorePtr bees = query(u"Bees"_s);
    ASSERT_TRUE(bees);
    EXPECT_EQ(bees->nbItems(), 2);
    EXPECT_EQ(bees->nbUnreadItem(), 1);
    EXPECT_GT(bees->date()->secondsSince(SystemClock().now()), 20000);
    EXPECT_FALSE(query(u"gone"_s));
    EXPECT_EQ(query(u"added"_s)->date(), Date::reference());
}

TEST_F(UpdaterTest, TwoNeverRunAtOnceAndAKilledOneLeavesNothingBehind)
{
    addQuery(u"bees"_s);
    services.results = {{Google, {u"http://h/g"_s}}};
    services.hold("/search?client=");
    const QByteArray before = contentOf(home->databaseFile());
    QProcess first;
    start(first, Progress);
    ASSERT_TRUE(waitForEvent(first, about("service-asked", "bees")));
    const Ended other = run({});
    EXPECT_EQ(other.status, 4);
    EXPECT_TRUE(other.text.contains(u"another refresh"_s)) << qPrintable(other.text);
    first.kill();
    EXPECT_EQ(end(first).status, -1);
    EXPECT_EQ(contentOf(home->databaseFile()), before);

    services.release();
    EXPECT_EQ(run({}).status, 0);
    EXPECT_EQ(query(u"bees"_s)->nbItems(), 1);
}

TEST_F(UpdaterTest, UpdatesWhatIsNamed)
{
    services.results = {{Google, {u"http://h/g"_s}}};
    edit([](const QueryCorePtr& root) {
        const QueryCorePtr folder = QueryCore::initWithQueryFolder(u"folder"_s);
        const QueryCorePtr paused = QueryCore::initWithQueryFolder(u"paused folder"_s);
        const QueryCorePtr off = QueryCore::initWithQuery(u"off"_s);
        for (const QueryCorePtr& node : {folder, paused, off, QueryCore::initWithQuery(u"twin"_s)})
            root->addChild(node);
        folder->addChild(QueryCore::initWithQuery(u"inner"_s));
        paused->addChild(QueryCore::initWithQuery(u"deep"_s));
        paused->addChild(QueryCore::initWithQuery(u"twin"_s));
        paused->setEnabled(false);
        off->setEnabled(false);
    });
    struct Case {
        QStringList names;
        int status;
        QStringList outcomes;
    };
    const QString beginning = query(u"folder"_s)->UUID().left(13).toLower();
    for (const Case& c : {Case{{u"deep"_s, beginning, u"INNER"_s}, 0, {u"deep updated 1"_s, u"inner updated 1"_s}},
                          Case{{u"off"_s, u"deep"_s}, 3, {u"deep recent 0"_s, u"off paused 0"_s}},
                          Case{{u"paused folder"_s}, 3, {u"paused folder paused 0"_s}},
                          Case{{u"deep"_s, u"twin"_s}, 2, {}}, Case{{u"nothing of that name"_s}, 2, {}}}) {
        const Ended ended = run(Progress + c.names);
        EXPECT_EQ(ended.status, c.status) << qPrintable(c.names.join(u' '));
        EXPECT_EQ(outcomes(ended), c.outcomes) << qPrintable(outcomes(ended).join(u'\n'));
        EXPECT_EQ(ended.events.last()[u"status"].toInt(), c.status);
    }
    EXPECT_FALSE(Schedule(home, files).read(SystemClock().now()).lastUpdate) << "that was no full refresh";
}

TEST_F(UpdaterTest, RefusesWrongUse)
{
    for (const QString& wrong : {u"--clock-offset=nan"_s, u"--clock-offset=9e99"_s, u"--home=/twice"_s, u"-x"_s})
        EXPECT_EQ(run({wrong}).status, 2) << qPrintable(wrong);
}

} // namespace
} // namespace quarry::test
