#include "engines/Interleave.h"

#include "engines/Records.h"

#include <gtest/gtest.h>

namespace quarry {
namespace {

TEST(Interleave, TakesEveryServicesFirstThenEveryServicesSecondAndDropsLaterDuplicates)
{
    const ServiceLists lists = {linksTo({u"g:1"_qs, u"g:2"_qs, u"x:same"_qs}), linksTo({u"x:same"_qs}), ResultList(),
                                ResultList(), linksTo({u"i:1"_qs, u"g:2"_qs, u"i:3"_qs, u"i:4"_qs, u"i:5"_qs})};
    const ResultList all = interleaved(lists);
    EXPECT_EQ(addressesOf(all), QStringList({u"g:1"_qs, u"x:same"_qs, u"i:1"_qs, u"g:2"_qs, u"g:2"_qs, u"x:same"_qs,
                                             u"i:3"_qs, u"i:4"_qs, u"i:5"_qs}));
    EXPECT_EQ(addressesOf(arrayWithUniqueItem(all)),
              QStringList({u"g:1"_qs, u"x:same"_qs, u"i:1"_qs, u"g:2"_qs, u"i:3"_qs, u"i:4"_qs, u"i:5"_qs}));
    EXPECT_TRUE(interleaved({}).isEmpty());
    EXPECT_EQ(arrayWithUniqueItem({ResultRecord(), ResultRecord()}).size(), 2);
}

} // namespace
} // namespace quarry
