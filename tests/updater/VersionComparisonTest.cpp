#include "updater/VersionComparison.h"

#include "support/QtPrinting.h"

#include <QString>

#include <gtest/gtest.h>

using namespace quarry;

namespace {

TEST(VersionComparison, FollowsNumbersWithoutPointsThenBetas)
{
    struct Case {
        const char* local;
        const char* remote;
        bool newer;
    };
    const Case cases[] = {
        {"1.2.5", "1.2.5", false},
        {"1.2.5", "1.2.6", true},
        {"1.9.1", "1.10", false}, // 191 and 110
        {"1.9.1", "", false},
        {"", "1", true},
        {"99999999999999999999", "99999999999999999999", false}, // more than any integer holds
        // A beta against a release.
        {"1.2.5", "1.3b1", false}, // 13 and 125
        {"1.2.5", "1.3.0b1", true},
        {"1.3b2", "1.3", true},
        {"1.3b2", "1.2", false},
        {"1.3", "1.3b2", false},
        // Two betas.
        {"1.3b2", "1.4b1", true},
        {"1.3b2", "1.3b2", false},
        {"1.3b2", "1.3b3", true},
        {"1.3b3", "1.2b4", true}, // a smaller number still looks at the betas
        {"1.3b100604", "1.3b100605", true},
        {"1.3b100605", "1.3b100604", false},
        {"1.3b100604", "1.3b100604a", true},
        {"1.3b100604a", "1.3b100604", true},
        {"1.3b100604c", "1.3b100604B", false},
        {"1.3b100604b", "1.3b100604B", true}, // letters equal but for case
        {"1.3b100604b", "1.3b100604b", false},
        {"1.3b100604b", "1.3b100604c", true},
        {"1.3b1006041", "1.3b1006042", true}, // the seventh character counts as the letter, digit or not
        {"1.3b5", "1.3b5b3", false},          // "5b3" reads as 5
        {"1.3b1", "1.3.0.1b1", true},         // the local text ends before the remote's place: its beta is empty
        {"10.3b7", "1.3b5", true},            // the remote's place of the "b" counts for both: "b7" reads as 0 there
    };
    for (const Case& c : cases)
        EXPECT_EQ(isNewerVersion(QString::fromLatin1(c.remote), QString::fromLatin1(c.local)), c.newer)
            << "local " << c.local << ", remote " << c.remote;
}

} // namespace
