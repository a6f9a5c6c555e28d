#include "model/ResultSearch.h"

#include "model/ModelTestSupport.h"

namespace quarry {

TEST(ResultSearch, ComparesTitlesAndTextsWithoutCaseAndAccentsAndAddressesWithoutCase)
{
    const auto text = [](const char16_t* s) { return QString::fromUtf16(s); };
    using Case = std::tuple<const char16_t*, const char16_t*, bool, bool>;
    const std::vector<Case> cases = {
        {u"cafe", u"The CAF\u00C9 here", true, false},
        {u"caf\u00E9", u"the Cafe here", true, false},
        {u"CAF\u00C9", u"cafe\u0301", true, false},
        {u"Berlin", u"berlin.example", true, true},
        {u"\u00DCber", u"\u00FCBER", true, true},
        {u"strasse", u"Stra\u00DFe", true, false},
        {u"\u039F\u0394\u039F\u03A3", u"\u03BF\u03B4\u03CC\u03C2", true, false},
        {u"\u0130stanbul", u"istanbul", true, false},
        {u"\u2260", u"=", true, false},
        {u"\uAC00", u"\uAC01", false, false},
        {u"\u304B", u"\u304C", false, false},
        {u"needle", u"needl", false, false},
        {u"\u00E9", u"plain", false, false},
    };
    for (const auto& [wanted, shown, inText, inAddress] : cases) {
        const ResultSearch search(text(wanted));
        const QString found = text(shown);
        EXPECT_EQ(search.matches(ResultRecord().withTitle(found)), inText) << found.toStdString();
        EXPECT_EQ(search.matches(ResultRecord().withTextFromPage(found)), inText) << found.toStdString();
        EXPECT_EQ(search.matches(ResultRecord().withUrl(Url::fromStored(found))), inAddress) << found.toStdString();
    }
    EXPECT_FALSE(ResultSearch("a"_q).matches(ResultRecord()));
}

} // namespace quarry
