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
    const auto pick = [&random](const QString& all) {
        const QStringList parts = all.split(u' ');
        return parts[static_cast<qsizetype>(random() % static_cast<std::size_t>(parts.size()))];
    };
    const QString address = pick(u"http:// https:// HTTP:// mailto: // "_qs) + pick(u" u@"_qs) +
                            pick(u"h H [::1] a+b h\u00fc "_qs) + pick(u" :80"_qs) +
                            pick(u" / // /a /A /%41 /a/ /\u00e9 /.zip /b.zip// /c.z%69p /\u00e9/d.ZIP /e.f.zi"_qs) +
                            pick(u" ? ?x=1 ?x=/2 ?\u00e9.zip"_qs) + pick(u" # #/f"_qs);
    return QString(address).replace(u'+', u' ');
}

TEST(KnownLinks, AnswersLikeThePairwiseTestAndTheAddressOnGeneratedAddresses)
{
    constexpr std::array<QLatin1String, 2> Types = {QLatin1String("gz"), QLatin1String("zip")};
    std::mt19937 random(20240611);
    int same = 0;
    int archives = 0;
    for (int round = 0; round < 3000; ++round) {
        ResultList stored;
        for (unsigned i = 0; i < 12; ++i)
            stored.append(linkTo(generatedAddress(random)));
        const ResultRecord candidate = linkTo(generatedAddress(random));
        const Url url = candidate.url().value();
        SCOPED_TRACE(qPrintable(url.absoluteString() + u" among "_qs + addressesOf(stored).join(u'\n')));
        const bool expected = std::any_of(stored.begin(), stored.end(),
                                          [&](const ResultRecord& record) { return isSameLink(candidate, record); });
        const KnownLinks known(stored);
        const LinkAddress link(candidate);
        ASSERT_EQ(known.contains(link), expected);
        ASSERT_EQ(known.contains(url), expected);
        same += expected;
        // A link's parts are those of the address itself.
        const bool isArchive = url.pathExtension().compare(u"zip", Qt::CaseInsensitive) == 0;
        ASSERT_EQ(link.hasExtensionAmong(Types), isArchive);
        ASSERT_EQ(LinkAddress(url).hasExtensionAmong(Types), isArchive);
        ASSERT_EQ(link.host(), url.host());
        archives += isArchive;
    }
    // The generator meets both answers often.
    EXPECT_GT(same, 150);
    EXPECT_LT(same, 2850);
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
