// Twenty queries are refreshed at once, over and over, while somebody marks, hides and rates their results: no mark may
// get lost, no link be there twice. The loader, the pauser and the pages are made so that they order nothing between
// the threads: ThreadSanitizer is to see the program's own order only.

#include "database/QueryDatabaseEngine.h"
#include "database/RefreshCommit.h"
#include "engines/BlacklistHooks.h"
#include "engines/QueryUpdater.h"
#include "engines/UrlFilter.h"
#include "model/TreeLock.h"
#include "support/ServicePages.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <barrier>
#include <map>
#include <random>
#include <set>
#include <thread>

namespace quarry {
namespace {

constexpr int QueryCount = 20;
constexpr int LinksOfService = 6;
constexpr int MarksOfRound = 100;
constexpr int EditsOfRound = 3;

int refreshCount()
{
    constexpr int Usual = 12;
    const int asked = qEnvironmentVariableIntValue("QUARRY_REFRESHES");
    return asked > 0 ? asked : Usual;
}

class NoPause final : public Pauser {
public:
    bool pause(std::chrono::milliseconds) override { return true; }
    [[nodiscard]] bool isStopped() const override { return false; }
};

class NoLog final : public Logger {
public:
    void logString(const QString&) override {}
};

/// Every service's page: some links that all of them name, some of its own, and with the rounds other ones.
class RoundPages final : public PageLoader {
public:
    std::atomic<int> round{0};

    [[nodiscard]] LoadedPage load(const QByteArray& address) override
    {
        const SearchService service = test::serviceOf(address).value();
        const int first = round.load(std::memory_order_relaxed) / 4 % 40;
        QStringList links;
        for (int i = 0; i < LinksOfService; ++i)
            links.append(u"http://site%1.example/page%2?by=%3"_qs.arg(i)
                             .arg(first + i * (1 + int(indexOf(service))))
                             .arg(indexOf(service)));
        links.append(u"http://ads.example/%1"_qs.arg(first));
        LoadedPage page;
        page.bytes = test::resultPage(service, links);
        page.contentType = u"text/html"_qs;
        page.httpStatus = 200;
        return page;
    }
};

/// Holds every update until all of them run.
class AllAtOnce final : public UpdateObserver {
public:
    std::atomic<int> updated{0};

    void updateStarted(const UpdatedQuery&) override { _all.arrive_and_wait(); }
    void serviceAsked(const UpdatedQuery&, SearchService) override {}
    void serviceAnswered(const UpdatedQuery&, SearchService, const ServiceFacts&) override {}
    void updateFinished(const UpdatedQuery&, const UpdateFacts& facts) override
    {
        updated += facts.end == UpdateEnd::Updated;
    }

private:
    std::barrier<> _all{QueryCount};
};

/// What somebody made of a result.
struct Mark {
    bool read = false;
    bool hidden = false;
    qint64 rating = 0;
    friend bool operator==(const Mark&, const Mark&) = default;
};

Mark markOf(const ResultRecord& record)
{
    return {record.isRead(), record.visible() == false, record.rating().value_or(0)};
}

/// Marks one result after the other, by chance, and remembers what it did.
class User final {
public:
    explicit User(unsigned seed) : _random(seed) {}

    /// One change to the query; nothing when it has no results yet.
    void markOne(const QueryCorePtr& query)
    {
        const TreeLock together;
        const bool hidden = roll(4) == 0;
        const ResultList list = (hidden ? query->hiddenResults() : query->results()).value_or(ResultList());
        if (list.isEmpty())
            return;
        // Held since some time, like what a window shows: a merge may have replaced it.
        const ResultRecord& picked = list[roll(int(list.size()))];
        ResultRecord& held = _held.try_emplace(picked.linkUuid().value(), picked).first->second;
        const ResultRecord current = query->currentRecord(held).value();
        ASSERT_EQ(markOf(current).hidden, hidden);
        Mark& mark = _marks.try_emplace(picked.linkUuid().value(), markOf(current)).first->second;
        change(query, current, mark);
        ++count;
    }

    /// Every mark is as it was left.
    void check(const QueryCorePtr& root) const
    {
        std::map<QString, Mark> found;
        for (const QueryCorePtr& query : root->childs().value_or(QList<QueryCorePtr>())) {
            for (const ResultList& list : {query->results().value(), query->hiddenResults().value_or(ResultList())}) {
                for (const ResultRecord& record : list)
                    EXPECT_TRUE(found.emplace(record.linkUuid().value(), markOf(record)).second);
            }
        }
        int lost = 0;
        for (const auto& [uuid, mark] : _marks) {
            const auto there = found.find(uuid);
            lost += there == found.end() || there->second != mark;
        }
        EXPECT_EQ(lost, 0) << "of " << _marks.size() << " marked results";
    }
    [[nodiscard]] std::size_t markedResults() const { return _marks.size(); }

    int count = 0;

private:
    int roll(int sides) { return static_cast<int>(_random() % static_cast<unsigned>(sides)); }

    void change(const QueryCorePtr& query, const ResultRecord& record, Mark& mark)
    {
        if (mark.hidden || roll(8) == 0) {
            mark.hidden = !mark.hidden;
            query->setHidden(mark.hidden, record);
        } else if (roll(2) == 0) {
            mark.rating = 1 + roll(5);
            EXPECT_TRUE(query->setRating(mark.rating, record));
        } else {
            mark.read = !mark.read;
            mark.read ? query->markItemAsRead(record) : query->markItemAsUnread(record);
        }
    }

    std::mt19937 _random;
    std::map<QString, Mark> _marks;
    std::map<QString, ResultRecord> _held;
};

/// A program that refreshes, put together as the updater is.
class ManyRefreshes : public ::testing::Test {
protected:
    ManyRefreshes()
    {
        const QueryUpdateParts parts = {
            addresses,
            {loader, pauser, clock, files, [](const QString& key) { return key; }, home->cachesFolder(), 10},
            notifications,
            [this](const QString& uuid) { return database->queryForUUID(uuid); },
            0,
            {{}, filterByUrl, {}, hooks},
            [this](const BroughtUpdate& brought) { commit->add(brought); },
            &atOnce};
        updater.emplace(parts);
        database.emplace(QueryDatabaseEngine::Parts{home, clock, pauser, files, notifications, &*updater, {}},
                         QueryDatabaseEngine::AtEnd::Discard);
        commit.emplace(*database, [this](QueryCore& node, const BroughtUpdate& brought) {
            if (node.date() != brought.date)
                mergeIntoQuery(node, brought.asked, brought.links, brought.date, 0, hooks);
        });
        EXPECT_EQ(BlacklistStore(home, files).change([](BlacklistManager& rules) {
            rules.addToBlacklist(BlacklistFilter::initWithRule(u"ads.example"_qs, BlacklistType::Domain, true, false));
            return true;
        }),
                  QString());
        EXPECT_EQ(database->edit([](QueryDatabaseEngine& locked) {
            for (int i = 0; i < QueryCount; ++i)
                locked.addQuery(u"query %1"_qs.arg(i), false)->setCheckBlacklist(true);
            return QString();
        }),
                  QString());
    }

    /// One refresh of everything: mostly from the page cache, sometimes past its six hours.
    void refresh(int round)
    {
        clock.advance(round % 4 == 0 ? 22000 : 901);
        loader.round.store(round, std::memory_order_relaxed);
        atOnce.updated = 0;
        database->updateAllQueries();
        updater->waitUntilIdle();
        EXPECT_EQ(commit->commit(), QString());
        ASSERT_EQ(atOnce.updated, QueryCount);
    }

    /// Refreshes so often while somebody is at work on another thread, once a round or oftener.
    void refreshBeside(int rounds, const std::function<void()>& work)
    {
        std::atomic<int> round{-1};
        std::thread beside([&] {
            for (int seen = -1; seen < rounds; seen = round) {
                round.wait(seen);
                work();
            }
        });
        for (int i = 0; i <= rounds; ++i) {
            round = i;
            round.notify_one();
            if (i < rounds)
                refresh(i);
        }
        beside.join();
    }

    /// No link twice, and none that the rules catch.
    static void checkLinks(const QueryCorePtr& root)
    {
        for (const QueryCorePtr& query : root->childs().value_or(QList<QueryCorePtr>())) {
            const ResultList all = query->results().value() + query->hiddenResults().value_or(ResultList());
            std::set<QString> links;
            for (const ResultRecord& record : all) {
                const Url url = record.url().value();
                links.insert(url.host().toString().append(url.path()));
                EXPECT_NE(url.host(), u"ads.example");
            }
            EXPECT_EQ(qsizetype(links.size()), all.size());
            EXPECT_GT(all.size(), LinksOfService);
        }
    }
    [[nodiscard]] QueryCorePtr treeInFile()
    {
        NotificationCenter center;
        QueryDatabaseEngine reader({home, clock, pauser, files, center, nullptr, {}},
                                   QueryDatabaseEngine::AtEnd::Discard);
        return reader.rootQuery();
    }

    test::TemporaryHome home;
    test::SettableClock clock;
    NoPause pauser;
    NoLog log;
    DiskFileStore files;
    NotificationCenter notifications;
    RoundPages loader;
    AllAtOnce atOnce;
    SearchAddresses addresses{SearchServices(), [](const QString&) { return u"xx"_qs; }};
    BlacklistStore blacklist{home, files};
    PrivateFilters filters;
    MergeHooks hooks = blacklistHooks(blacklist, filters, log);
    std::optional<QueryDatabaseEngine> database;
    std::optional<RefreshCommit> commit;
    std::optional<QueryUpdater> updater;
};

TEST_F(ManyRefreshes, LoseNoMarkOfThisProgram)
{
    User user(2024);
    refreshBeside(refreshCount(), [&] {
        for (int i = 0; i < MarksOfRound; ++i)
            user.markOne(database->currentRoot()->childs()->at(i % QueryCount));
    });
    EXPECT_TRUE(database->saveDatabase(true));
    RecordProperty("marks", user.count);
    EXPECT_GT(user.markedResults(), std::size_t(MarksOfRound));
    for (const QueryCorePtr& root : {database->currentRoot(), treeInFile()}) {
        user.check(root);
        checkLinks(root);
    }
}

TEST_F(ManyRefreshes, LoseNoMarkOfAnotherProgram)
{
    NotificationCenter center;
    QueryDatabaseEngine other({home, clock, pauser, files, center, nullptr, {}}, QueryDatabaseEngine::AtEnd::Discard);
    User user(2025);
    const auto mark = [&user](QueryDatabaseEngine& locked) {
        for (const QueryCorePtr& query : locked.queries().value_or(QList<QueryCorePtr>()))
            user.markOne(query);
        return QString();
    };
    refreshBeside(std::max(4, refreshCount() / 10), [&] {
        for (int i = 0; i < EditsOfRound; ++i)
            EXPECT_EQ(other.edit(mark), QString());
    });
    RecordProperty("marks", user.count);
    EXPECT_GT(user.markedResults(), std::size_t(QueryCount));
    const QueryCorePtr root = treeInFile();
    user.check(root);
    checkLinks(root);
}

} // namespace
} // namespace quarry
