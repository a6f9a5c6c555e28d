#include "NotedLines.h"
#include "blacklist/BlacklistFilter.h"
#include "blacklist/BlacklistManager.h"

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;

namespace {

struct Case {
    qint64 type;
    const char* rule;
    bool caseSensitive;
    const char* address;
    bool isCaught;
};

constexpr qint64 T = BlacklistType::Text;
constexpr qint64 D = BlacklistType::Domain;
constexpr qint64 F = BlacklistType::FileType;
constexpr qint64 R = BlacklistType::RegularExpression;

const Case Cases[] = {
    {T, "ADS", false, "http://host.com/ads/1", true},
    {T, "ADS", true, "http://host.com/ads/1", false},
    {T, "ÄÖ", false, "http://host.com/xäöx", true},
    {T, "", false, "http://host.com/", false},
    {0, "host", false, "http://host.com/", false},
    {4, "host", false, "http://host.com/", false},
    {D, "host.com", false, "https://sub.HOST.com:80/path?q", true},
    {D, "host.com", true, "https://sub.HOST.com/", false},
    {D, "host.com", false, "host.com", true},
    {D, "http://user@sub.host.com:8080/x", false, "http://host.com/", true},
    {D, "sub.host.com", false, "http://sub.other.com/host.com", false},
    {D, "host.com", false, "http://ahost.community/", true},
    {D, "", false, "http://host.com/", false},
    {D, "host.com", false, "mailto:me@host.com", false},
    {D, "host.com", false, "http://host.com:port/", false},
    {D, "host.com", false, "", false},
    {F, "zip", false, "http://host.com/file.ZIP", true},
    {F, "zip", true, "http://host.com/file.ZIP", false},
    {F, ".zip", true, "http://host.com/file.zip/", true},
    {F, "pdf", false, "http://host.pdf.com/file.doc", true},
    {F, "zip", false, "http://host.com/file.zipx", false},
    {F, "zip", false, "http://host.com/zip", false},
    {F, "com", false, "http://host.com", true},
    {F, "zip", false, "http://host.com/file.zip?x=1", false},
    {F, "zip", false, "http://host.com/file.", false},
    {F, "zip", false, "http://host.com/.zip", false},
    {F, "", false, "http://host.com/a.b", false},
    {R, "^http://[^/]*HOST[0-9]+\\.", false, "http://a.host12.com/", true},
    {R, "^http://[^/]*HOST[0-9]+\\.", true, "http://a.host12.com/", false},
    {R, "(a|b", false, "http://a.com/", false},
};

TEST(BlacklistRule, CatchesWhatItsTypeSays)
{
    NotedLines log;
    for (const Case& c : Cases) {
        // The state does not count for a single rule.
        const auto filter = BlacklistFilter::initWithRule(QString::fromUtf8(c.rule), c.type, false, c.caseSensitive);
        EXPECT_EQ(filter->testString(QString::fromUtf8(c.address), log), c.isCaught)
            << c.type << ' ' << c.rule << " on " << c.address;
    }
    EXPECT_EQ(log.take(), QStringList{QStringLiteral("Error in Regexp '(a|b': Parentheses '( )' not balanced")});

    const auto filter = BlacklistFilter::initWithRule(std::nullopt, T, true, false);
    for (const qint64 type : {T, D, F, R}) {
        filter->setType(type);
        EXPECT_FALSE(filter->testString(QStringLiteral("http://a.b/c.d"), log)) << type;
    }
    EXPECT_FALSE(filter->copy()->state());
    EXPECT_EQ(filter->copy()->type(), 0);
    EXPECT_TRUE(filter->description().endsWith(QLatin1String("): 0, 1, (null)")));
}

TEST(BlacklistManager, KeepsItsRulesByType)
{
    const auto make = [](const char16_t* rule, qint64 type) {
        return BlacklistFilter::initWithRule(QString::fromUtf16(rule), type, true, false);
    };
    BlacklistManager list;
    EXPECT_EQ(list.addToBlacklist(nullptr), -1);
    const auto regex = make(u"x(", R), file = make(u"pdf", F), text = make(u"one", T), twin = make(u"one", T);
    EXPECT_EQ(list.addToBlacklist(regex), 0);
    EXPECT_EQ(list.addToBlacklist(file), 0);
    EXPECT_EQ(list.addToBlacklist(text), 0);
    EXPECT_EQ(list.addToBlacklist(make(u"host", D)), 1);
    EXPECT_EQ(list.addToBlacklist(twin), 1);
    EXPECT_EQ(list.addToBlacklist(text), 0);
    EXPECT_EQ(list.addToBlacklist(nullptr), 5);
    EXPECT_EQ(list.filterAtIndex(5), regex);
    EXPECT_EQ(list.filterAtIndex(-1), nullptr);
    EXPECT_EQ(list.filterAtIndex(6), nullptr);

    NotedLines log;
    EXPECT_TRUE(list.isAddressFiltered(QStringLiteral("http://a.b/one"), log));
    list.setState(false, twin);
    EXPECT_TRUE(list.isAddressFiltered(QStringLiteral("http://a.b/one"), log));
    EXPECT_EQ(log.take(), QStringList()) << "the first rule that catches ends the test";
    list.removeFromBlacklist(text);
    EXPECT_EQ(list.filtersCount(), 4) << "a rule is removed wherever it stands, its twin stays";
    EXPECT_FALSE(list.isAddressFiltered(QStringLiteral("http://a.b/one"), log));
    EXPECT_EQ(log.take().size(), 1);
    list.removeFromBlacklist(text);
    EXPECT_EQ(list.filtersCount(), 4);
    EXPECT_EQ(list.copy().filtersCount(), 0);
}

} // namespace
