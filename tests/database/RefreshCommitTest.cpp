#include "database/RefreshCommit.h"

#include "DatabaseFixture.h"

using namespace quarry;
using namespace quarry::test;

namespace {

class RefreshCommits : public DatabaseFixture {
protected:
    RefreshCommits()
    {
        EXPECT_EQ(addElsewhere(QStringLiteral("a")), QString());
        EXPECT_EQ(addElsewhere(QStringLiteral("b")), QString());
        engine = std::make_unique<Engine>(parts(), Engine::AtEnd::Discard);
        commit = std::make_unique<RefreshCommit>(*engine, [this](QueryCore& node, const BroughtUpdate& brought) {
            ++merges;
            setResults(node.shared_from_this(), node.results().value_or(ResultList()) + brought.links);
        });
    }
    /// What an update of the query at that place of the tree does.
    void bring(qsizetype index)
    {
        const QueryCorePtr node = engine->queries()->at(index);
        const ResultList links{ResultRecord().withTitle(QStringLiteral("new"))};
        setResults(node, links);
        commit->add({node->UUID(), SearchDefinition::of(node->snapshot().fields), links, Date(2.0), node});
    }
    QString resultsInFile()
    {
        Engine reader(parts(), Engine::AtEnd::Discard);
        QString text;
        const QList<QueryCorePtr> nodes = *reader.queries();
        for (const QueryCorePtr& node : nodes)
            text += node->title() + QString::number(node->nbItems());
        return text;
    }

    std::unique_ptr<Engine> engine;
    std::unique_ptr<RefreshCommit> commit;
    int merges = 0;
};

TEST_F(RefreshCommits, AnUntouchedFileTakesTheTreeAsItIs)
{
    bring(0);
    EXPECT_EQ(commit->commit(), QString());
    EXPECT_EQ(merges, 0) << "the node has the links already";
    EXPECT_EQ(resultsInFile(), QStringLiteral("a1b0"));
    EXPECT_TRUE(commit->isEmpty());
}

TEST_F(RefreshCommits, ADatabaseThatIsDamagedMeanwhileIsNotReplacedByAnEmptyOne)
{
    bring(0);
    const QByteArray good = bytesInFile();
    ASSERT_TRUE(writeFile(home->databaseFile(), good.left(good.size() / 2)));
    EXPECT_NE(commit->commit(), QString());
    EXPECT_TRUE(engine->saveDatabase(true)) << "as when the last update ends";
    EXPECT_EQ(bytesInFile(), good.left(good.size() / 2));
    // The user puts a backup in its place.
    ASSERT_TRUE(writeFile(home->databaseFile(), good));
    EXPECT_EQ(commit->commit(), QString());
    EXPECT_EQ(resultsInFile(), QStringLiteral("a1b0"));
}

TEST_F(RefreshCommits, LinksAreKeptUntilTheyAreSaved)
{
    bring(0);
    files.failWrites = true;
    EXPECT_NE(commit->commit(), QString());
    EXPECT_NE(commit->commit(), QString());
    EXPECT_FALSE(commit->isEmpty());
    files.failWrites = false;
    bring(1);
    EXPECT_EQ(commit->commit(), QString());
    EXPECT_EQ(resultsInFile(), QStringLiteral("a1b1"));
    EXPECT_EQ(commit->commit(), QString());
    EXPECT_EQ(resultsInFile(), QStringLiteral("a1b1"));
}

} // namespace
