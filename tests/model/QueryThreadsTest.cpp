#include "model/ModelTestSupport.h"
#include "model/QueryCore.h"
#include "model/TreeLock.h"

#include <atomic>
#include <thread>

namespace quarry {

namespace {

constexpr int MarkCount = 200;
constexpr int MostMerges = 2000;

/// One merge of an update: made from a snapshot off the lock, done again when the node changed meanwhile.
void mergeOne(const QueryCorePtr& node, const ResultRecord& found)
{
    bool done = false;
    while (!done) {
        const QueryCore::Snapshot before = node->snapshot();
        ResultList merged = *before.fields._currentResult;
        for (ResultRecord& record : merged)
            record = record.withNewSincePrevious(false);
        merged << found.withNewSincePrevious(true);
        done = node->replaceResultsIfUnchanged(before.generation, merged, Date(1));
    }
}

} // namespace

TEST(QueryThreads, NoMarkIsLostWhileUpdatesMerge)
{
    ResultList records;
    for (int i = 0; i < MarkCount; ++i)
        records << recordNamed(QString::number(i));
    const QueryCorePtr node = queryWith(records);

    std::atomic<int> merges = 0;
    std::atomic<bool> allMarked = false;
    std::thread update([&] {
        while (!allMarked && merges < MostMerges) {
            mergeOne(node, recordNamed("new%1"_q.arg(merges)));
            ++merges;
            merges.notify_one();
        }
    });
    merges.wait(0);
    for (const ResultRecord& record : records) {
        const TreeLock together;
        node->markItemAsRead(*node->currentRecord(record));
    }
    allMarked = true;
    update.join();

    EXPECT_EQ(node->nbItems(), MarkCount + merges);
    for (const ResultRecord& record : records)
        EXPECT_TRUE(node->currentRecord(record)->isRead()) << record.title()->toStdString();
}

} // namespace quarry
