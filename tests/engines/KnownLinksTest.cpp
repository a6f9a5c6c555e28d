#include "engines/KnownLinks.h"

#include "engines/Records.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace quarry {
namespace {

/// The rule as it reads, two links at a time.
bool isSameLink(const ResultRecord& candidate, const ResultRecord& stored)
{
    const Url a = candidate.url().value();
    const Url b = stored.url().value();
    if (a.absoluteString() == b.absoluteString())
        return true;
    if (a.host().isEmpty() || a.host() != b.host())
        return false;
    return (a.path().isEmpty() && b.path().size() == 1) || (a.path().size() == 1 && b.path().isEmpty()) ||
           a.path() == b.path();
}

QString generatedAddress(std::mt19937& random)
{
    const auto pick = [&random](const QStringList& parts) {
        return parts[static_cast<qsizetype>(random() % static_cast<std::size_t>(parts.size()))];
    };
    return pick({u"http://"_qs, u"https://"_qs, u"HTTP://"_qs, u"mailto:"_qs, u"//"_qs, u""_qs}) +
           pick({u""_qs, u"u@"_qs}) + pick({u"h"_qs, u"H"_qs, u"[::1]"_qs, u"a b"_qs, u"h\u00fc"_qs, u""_qs}) +
           pick({u""_qs, u":80"_qs}) +
           pick({u""_qs, u"/"_qs, u"//"_qs, u"/a"_qs, u"/A"_qs, u"/%41"_qs, u"/a/"_qs, u"/\u00e9"_qs, u"/.zip"_qs,
                 u"/b.zip//"_qs, u"/c.z%69p"_qs, u"/\u00e9/d.ZIP"_qs, u"/e.f.zi"_qs}) +
           pick({u""_qs, u"?"_qs, u"?x=1"_qs, u"?x=/2"_qs, u"?\u00e9.zip"_qs}) + pick({u""_qs, u"#"_qs, u"#/f"_qs});
}

TEST(KnownLinks, AnswersLikeThePairwiseTestOnGeneratedAddresses)
{
    std::mt19937 random(20240611);
    int same = 0;
    for (int round = 0; round < 3000; ++round) {
        ResultList stored;
        for (unsigned i = 0; i < 12; ++i)
            stored.append(linkTo(generatedAddress(random)));
        const ResultRecord candidate = linkTo(generatedAddress(random));
        const bool expected = std::any_of(stored.begin(), stored.end(),
                                          [&](const ResultRecord& record) { return isSameLink(candidate, record); });
        const KnownLinks known(stored);
        ASSERT_EQ(known.contains(LinkAddress(candidate)), expected)
            << qPrintable(candidate.urlText().value()) << " among " << qPrintable(addressesOf(stored).join(u'\n'));
        ASSERT_EQ(known.contains(candidate.url().value()), expected)
            << qPrintable(candidate.urlText().value()) << " among " << qPrintable(addressesOf(stored).join(u'\n'));
        same += expected;
    }
    // The generator meets both answers often.
    EXPECT_GT(same, 150);
    EXPECT_LT(same, 2850);
}

TEST(LinkAddress, ReadsPartsLikeTheAddressItself)
{
    constexpr std::array<QLatin1String, 2> Types = {QLatin1String("gz"), QLatin1String("zip")};
    std::mt19937 random(20010101);
    int archives = 0;
    for (int round = 0; round < 3000; ++round) {
        const ResultRecord record = linkTo(generatedAddress(random));
        const Url url = record.url().value();
        const bool isArchive = url.pathExtension().compare(u"zip", Qt::CaseInsensitive) == 0;
        const LinkAddress link(record);
        ASSERT_EQ(link.hasExtensionAmong(Types), isArchive) << qPrintable(url.absoluteString());
        ASSERT_EQ(LinkAddress(url).hasExtensionAmong(Types), isArchive) << qPrintable(url.absoluteString());
        ASSERT_EQ(link.host(), url.host()) << qPrintable(url.absoluteString());
        archives += isArchive;
    }
    EXPECT_GT(archives, 300);
}

TEST(KnownLinks, IgnoresQueryAndFragmentButNeitherHostNorSpellingOfThePath)
{
    const KnownLinks known(linksTo({u"http://h/a?x=1"_qs, u"https://root"_qs}) + ResultList{ResultRecord()});
    for (const QString& same : {u"https://h:8080/a?x=2#f"_qs, u"http://root/"_qs, u"http://root/?q"_qs})
        EXPECT_TRUE(known.contains(Url::fromStored(same))) << qPrintable(same);
    for (const QString& other : {u"http://H/a"_qs, u"http://h/%61"_qs, u"http://h/a/"_qs, u"http://root//"_qs, u""_qs})
        EXPECT_FALSE(known.contains(Url::fromStored(other))) << qPrintable(other);
}

} // namespace
} // namespace quarry
