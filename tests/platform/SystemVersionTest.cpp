#include "platform/SystemVersion.h"

#include "platform/linux/SystemRelease.h"

#include <gtest/gtest.h>

using namespace quarry;

namespace {

TEST(SystemVersion, IsTheReleaseFilesNumberAndNeverTooOld)
{
    EXPECT_EQ(versionInRelease("NAME=x\nVERSION_ID=\"12\"\nVERSION=\"1\"\n"), 120000);
    EXPECT_EQ(versionInRelease("VERSION_ID=22.04"), 220400);
    EXPECT_EQ(versionInRelease("VERSION_ID='12.4.1'\r\n"), 120401);
    EXPECT_EQ(versionInRelease("VERSION_ID=40.2024.7\n"), 409907);
    for (const char* old : {"VERSION_ID=3.19", "", "OLD_VERSION_ID=12", "VERSION_ID=rolling", "VERSION_ID=-20"})
        EXPECT_EQ(versionInRelease(old), 101500) << old;
    EXPECT_GE(operatingSystemVersion(), 101500);
}

} // namespace
