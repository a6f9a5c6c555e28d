#include "text/LocalisedFormat.h"

#include "support/QtPrinting.h"

#include <gtest/gtest.h>

using namespace quarry;

namespace {

TEST(LocalisedFormat, FillsPlaceholdersInOneStep)
{
    using Case = std::tuple<QString, std::vector<FormatArgument>, QString>;
    const QString tricky = QStringLiteral("100%d %@ %2$@ %%");
    const std::vector<Case> cases = {
        {QStringLiteral("\n%ld new: %@"), {qint64{3}, tricky}, QStringLiteral("\n3 new: ") + tricky},
        {QStringLiteral("%2$@ (%1$ld)"), {qint64{-3}, tricky}, tricky + QStringLiteral(" (-3)")},
        {QStringLiteral("%.1f of %.0f MB, %f"), {1.26, 20.0, 0.5}, QStringLiteral("1.3 of 20 MB, 0.500000")},
        {QStringLiteral("%d%%, %lu"), {qint64{50}, qint64{7}}, QStringLiteral("50%, 7")},
        {QStringLiteral("%@ %@ %d"), {qint64{1}, QStringLiteral("a")}, QStringLiteral("%@ a %d")},
        {QStringLiteral("100 % sure, %"), {QStringLiteral("a")}, QStringLiteral("100 % sure, %")},
        {QString(), {}, QString()},
    };
    for (const auto& [format, arguments, filled] : cases)
        EXPECT_EQ(filledFormat(format, arguments), filled) << format.toStdString();
}

TEST(LocalisedFormat, NamesPlaceholdersAlikeInAnyOrder)
{
    const QStringList expected = {QStringLiteral("1d"), QStringLiteral("2@")};
    EXPECT_EQ(placeholdersOf(QStringLiteral("%ld %% %@")), expected);
    EXPECT_EQ(placeholdersOf(QStringLiteral("%2$@ %1$d")), expected);
    EXPECT_NE(placeholdersOf(QStringLiteral("%@ %ld")), expected);
}

} // namespace
