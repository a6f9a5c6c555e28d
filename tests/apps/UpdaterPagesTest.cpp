#include "UpdaterRig.h"
#include "text/Data.h"

namespace quarry {
namespace {

using test::UpdaterTest;
using enum SearchService;

TEST_F(UpdaterTest, ReadsThePagesBehindResultsOnItsOwnMachine)
{
    edit([](const QueryCorePtr& root) {
        const QueryCorePtr query = QueryCore::initWithAdvancedQuery(u"bees"_qs, 3, QString(), QString());
        query->setComputeChecksum(true);
        root->addChild(query);
    });
    services.pages = {{"/with", "<p>Where the bees are.</p>"}, {"/without", "<p>Nothing.</p>"}};
    services.results = {{Google, {services.address("/with"), services.address("/without")}}};
    const Ended ended = run({u"--progress"_qs});
    EXPECT_EQ(outcomes(ended), QStringList({u"bees updated 1"_qs})) << qPrintable(ended.text);
    const ResultList results = query(u"bees"_qs)->results().value_or(ResultList());
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0].urlText(), services.address("/with"));
    EXPECT_EQ(results[0].textFromPage(), u"Where the bees are."_qs);
    EXPECT_EQ(results[0].checksum(), md5sum(u"<p>Where the bees are.</p>"_qs));
}

} // namespace
} // namespace quarry
