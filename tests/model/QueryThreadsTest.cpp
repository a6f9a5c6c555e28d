#include "model/ModelTestSupport.h"
#include "model/QueryCore.h"
#include "model/TreeLock.h"

#include <thread>

namespace quarry {

namespace {

constexpr int MarkCount = 200;
constexpr int MergeCount = 60;

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

    std::thread update([&node] {
        for (int i = 0; i < MergeCount; ++i)
            mergeOne(node, recordNamed("new%1"_q.arg(i)));
    });
    for (const ResultRecord& record : records) {
        const TreeLock together;
        node->markItemAsRead(*node->currentRecord(record));
    }
    update.join();

    EXPECT_EQ(node->nbItems(), MarkCount + MergeCount);
    for (const ResultRecord& record : records)
        EXPECT_TRUE(node->currentRecord(record)->isRead()) << record.title()->toStdString();
}

} // namespace quarry
