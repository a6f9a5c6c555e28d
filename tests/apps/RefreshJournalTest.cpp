#include "apps/updater/RefreshJournal.h"

#include "support/OwnDatabase.h"

namespace quarry::test {

using namespace Qt::Literals::StringLiterals;
namespace {

class RefreshJournalTest : public ::testing::Test, protected OwnDatabase {
protected:
    QueryCorePtr inFile() { return openDatabase()->queries()->at(0); }
    void rename(const QString& title)
    {
        edit([&](Engine& engine) { engine.queries()->at(0)->setTitle(title); });
    }
    /// What the update of a query does: a merge into the tree in use, and an entry in the journal.
    static BroughtUpdate update(const QueryCorePtr& node, const QString& address, Date date)
    {
        const SearchDefinition asked = SearchDefinition::of(node->snapshot().fields);
        const ResultList links = {ResultRecord().withUrl(Url::fromStored(address))};
        mergeIntoQuery(*node, asked, links, date, 0, {});
        return {node->UUID(), asked, links, date, node};
    }
    void waitForEvent(const QString& name)
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return events.contains(name); });
        events.removeAll(name);
    }

    std::mutex mutex;
    std::condition_variable changed;
    QStringList events;
    RefreshProgress progress{[this](const QJsonObject& event) {
        const std::lock_guard lock(mutex);
        events.append(event[u"event"].toString());
        changed.notify_all();
    }};
};

TEST_F(RefreshJournalTest, SavesNowAndThenAndMergesIntoWhatOthersSaved)
{
    edit([](Engine& engine) { engine.addQuery(u"bees"_s, false); });
    const std::unique_ptr<Engine> database = openDatabase();
    RefreshJournal journal(*database, progress, {}, std::chrono::milliseconds(1));
    const Date date = clock.now();
    const BroughtUpdate first = update(database->queries()->at(0), u"http://h/1"_s, date);
    journal.add(first);
    waitForEvent(u"saved"_s);
    EXPECT_EQ(inFile()->results()->size(), 1);

    rename(u"Bees"_s);
    // As if the save in between had come before the first entry: the links are in the file, and still new.
    journal.add(first);
    waitForEvent(u"saved"_s);
    EXPECT_EQ(inFile()->results()->at(0).newSincePrevious(), true);
    EXPECT_EQ(inFile()->title(), u"Bees"_s);

    const BroughtUpdate second = update(database->queries()->at(0), u"http://h/2"_s, date.plusSeconds(1));
    rename(u"BEES"_s);
    journal.add(second);
    EXPECT_TRUE(journal.finish());
    EXPECT_EQ(inFile()->title(), u"BEES"_s);
    EXPECT_EQ(inFile()->results()->size(), 2);
    EXPECT_EQ(inFile()->date(), second.date);
}

} // namespace
} // namespace quarry::test
