#include "session/WindowMemory.h"

#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;

TEST(WindowMemory, KeepsTheLayoutBesideWhatOthersHaveInThePreferences)
{
    const TemporaryHome home;
    DiskFileStore files;
    ASSERT_TRUE(writeFile(
        home->preferencesFile(),
        writeXmlPropertyList(PlistValue::Dictionary{
            {QStringLiteral("pref_unknown"), 7}, {QStringLiteral("pref_resultOrder"), QStringLiteral("no number")}})));
    const WindowMemory memory(home, files);
    EXPECT_EQ(memory.read(), WindowLayout()) << "what makes no sense counts as missing";
    const WindowLayout layout{QByteArray("g\0g", 3), "t", "d", "c", "w", {QStringLiteral("A"), QStringLiteral("B")},
                              QStringLiteral("A"),   3};
    ASSERT_EQ(memory.write(layout), QString());
    EXPECT_EQ(WindowMemory(home, files).read(), layout);
    const auto entries = readPropertyList(contentOf(home->preferencesFile()));
    EXPECT_EQ((*entries)[QStringLiteral("pref_unknown")].integer(), 7);
}
