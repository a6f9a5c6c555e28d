#include "text/CSRegex.h"

#include "text/RegexLimits.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

using namespace quarry;

namespace {

QString u(const char* text)
{
    return QString::fromUtf8(text);
}

int codeOf(const QString& pattern)
{
    try {
        const CSRegex regex(pattern);
        return 0;
    } catch (const CSRegexException& e) {
        return e.code();
    }
}

} // namespace

TEST(CSRegexTest, BadPatternsRaiseTheNumberedErrors)
{
    const std::tuple<const char*, int, const char*> rows[] = {
        {"a(b", 8, "Parentheses '( )' not balanced"},      {"a[b", 7, "Brackets '[ ]' not balanced"},
        {"a{1", 9, "Braces '{ }' not balanced"},           {"a{2,1}", 10, "Invalid repetition count(s) in '{ }'"},
        {"a{40000}", 12, "Ran out of memory (the counts"}, {"[z-a]", 11, "Invalid character range in '[ ]'"},
        {"[[:nope:]]", 4, "Invalid character class"},      {"a\\", 5, "'' applied to unescapable character"},
        {"(a)\\2", 6, "Invalid backreference number"},     {"*a", 13, "'?', '*', or '+' operand invalid"},
    };
    for (const auto& [pattern, code, reason] : rows) {
        try {
            const CSRegex regex(u(pattern));
            ADD_FAILURE() << pattern << " compiled";
        } catch (const CSRegexException& e) {
            EXPECT_EQ(e.code(), code) << pattern;
            EXPECT_TRUE(e.reason().startsWith(u(reason))) << pattern << ": " << e.what();
        }
    }
    EXPECT_EQ(CSRegex::messageForCode(2), u("Invalid regular expression REG_ECOLLATE invalid collating element"));
    EXPECT_EQ(CSRegex::messageForCode(3), QString());
    EXPECT_EQ(CSRegex::messageForCode(17), u("Illegal byte sequence (bad multibyte character)"));
    EXPECT_EQ(CSRegex::messageForCode(18), QString());
}

TEST(CSRegexTest, PatternsThatWouldEatTheMachineAreRefused)
{
    QStringList refused = {QString(15000, QLatin1Char('(')) + QString(15000, QLatin1Char(')')),
                           QString(40000, QLatin1Char('a')), u("(()|a)").repeated(600), u("a?b*").repeated(501)};
    for (const char* pattern : {"((a{1,100}){1,100}){1,100}", "(a{1,60}){1,60}", "a{1,10000}", "(((x{50}){50}))+",
                                "(a{99999999999999999999}){99999999999999999999}", "a{1,1500}b{1,1500}",
                                "(a*)(a*)(a*)(a*)\\1\\2\\3\\4b", "(a*)(b)\\1\\2", "((a)\\1*)\\1", "()?+{0,40}.",
                                "(|a$){0,40}{2,}", "a{0,40}()\\1+{2,}", "(a|^)\\1", "(a)(\\1b)*"})
        refused.append(u(pattern));
    for (const QString& pattern : refused) {
        EXPECT_EQ(codeOf(pattern), 12) << qPrintable(pattern.left(60));
        EXPECT_FALSE(RegexLimits::excess(pattern.toUtf8()).isEmpty());
    }
    for (const char* pattern :
         {"a{1,1000}", "(.)\\1(.)\\2", "(ab*)\\1", "(a|b+)c\\1", "(([a-z]{0,61})?x)*((a*)+)+", "[()({1000}]{1,1000}",
          "\\({1,9}\\){1,9}", "[[:alpha:](((]+", "^https?://([a-z0-9-]{1,63}\\.){1,8}[a-z]{2,20}/"})
        EXPECT_EQ(codeOf(u(pattern)), 0) << pattern;
}

TEST(CSRegexTest, MatchesAndGroupsAreThoseOfTheUtf8Text)
{
    CSRegex regex(u("(é+)(x)?([a-z]*)"));
    EXPECT_TRUE(regex.matchesString(u("caféé")));
    EXPECT_FALSE(regex.matchesString(u("cafe")));
    EXPECT_EQ(regex.matchedSubstringOfString(u("日本éé語")), u("éé"));
    EXPECT_EQ(regex.capturedSubstringsOfString(u("éab")), (QStringList{u("éab"), u("é"), CSRegex::null(), u("ab")}));
    EXPECT_EQ(regex.capturedSubstringsOfString(u("e")), std::nullopt);
    EXPECT_EQ(regex.allMatchedSubstringsOfString(u("éa-ééxb-é")), (QStringList{u("éa"), u("ééxb"), u("é")}));
    EXPECT_EQ(regex.allCapturedSubstringsOfString(u("é é")).size(), 2);
    EXPECT_EQ(componentsSeparatedByPattern(u("a,b,,c,"), u(",")), (QStringList{u("a"), u("b"), u(""), u("c"), u("")}));
    EXPECT_EQ(componentsSeparatedByPattern(u("abc"), u(",")), QStringList{u("abc")});
    EXPECT_TRUE(matchedByPattern(u("É"), u("é"), CSRegex::IgnoreCase));
    EXPECT_FALSE(matchedByPattern(u("É"), u("é")));
    EXPECT_TRUE(matchedByPattern(u("日本語"), u("^...$")));
    EXPECT_TRUE(matchedByPattern(u("abc"), u("b"), CSRegex::NoSubexpressions));
}

TEST(CSRegexTest, AMatchThatTookLongChangesNoLaterAnswer)
{
    // Each window of thirteen letters is another state of this pattern.
    CSRegex regex(u("(a|b)*(a)((a|b){12})(x)?$"), CSRegex::IgnoreCase);
    QString text;
    for (int i = 0; i < 1500; ++i)
        text += QLatin1Char("aabB"[i * i % 31 % 4]);
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(regex.matchesString(text + u("-")));
        EXPECT_EQ(regex.capturedSubstringsOfString(u("bAbbbbAAbbbbab")),
                  (QStringList{u("bAbbbbAAbbbbab"), u("b"), u("A"), u("bbbbAAbbbbab"), u("b"), CSRegex::null()}));
    }
}

TEST(CSRegexTest, AStartAnchorHoldsOnlyAtTheStartOfTheBuffer)
{
    EXPECT_EQ(allSubstringsMatchedByPattern(u("aaa"), u("^a")), QStringList{u("a")});
    CSRegex regex(u("b+"));
    regex.beginMatchingData(QByteArrayLiteral("abbabb"), {2, 2});
    EXPECT_TRUE(regex.matchNext());
    EXPECT_EQ(regex.stringForMatch(0), u("b"));
    EXPECT_FALSE(regex.matchNext());
    EXPECT_FALSE(regex.matchNext()) << "idle: there is no data";
}

TEST(CSRegexTest, AGroupThatIsNotThereRaises)
{
    CSRegex regex(u("(a)(b)"));
    regex.beginMatchingString(u("ab"));
    ASSERT_TRUE(regex.matchNext());
    EXPECT_EQ(regex.stringForMatch(2), u("b"));
    for (const int n : {-1, 3}) {
        try {
            (void)regex.stringForMatch(n);
            ADD_FAILURE();
        } catch (const CSRegexRangeException& e) {
            EXPECT_EQ(e.reason(), QStringLiteral("Index %1 out of range for regex \"(a)(b)\"").arg(n));
        }
    }
}

TEST(CSRegexTest, EscapedPatternEscapesTheOpeningHalvesOnly)
{
    EXPECT_EQ(escapedPattern(u("a.b[c]")), u("a\\.b\\[c]"));
    EXPECT_EQ(escapedPattern(u("$()*+.?[\\^{|]}-é")), u("\\$\\(\\)\\*\\+\\.\\?\\[\\\\\\^\\{\\|]}-é"));
}

TEST(CSRegexTest, AnswersDoNotDependOnTheProcessLocale)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "C");
    EXPECT_TRUE(matchedByPattern(u("é"), u("^.$")));
    EXPECT_TRUE(matchedByPattern(u("é"), u("^[[:alpha:]]$")));
    std::setlocale(LC_ALL, before.c_str());
}
