// The matcher beside the rules tried one after the other: the same answers, the same lines logged.

#include "blacklist/BlacklistMatcher.h"

#include "NotedLines.h"
#include "blacklist/RequiredText.h"

#include <gtest/gtest.h>

#include <random>

using namespace quarry;
using namespace quarry::test;

namespace {

class Dice final {
public:
    explicit Dice(unsigned seed) : _engine(seed) {}
    int below(int bound) { return static_cast<int>(_engine() % static_cast<unsigned>(bound)); }
    QString oneOf(const char* choices) // Between blanks.
    {
        const QStringList list = QString::fromUtf8(choices).split(u' ');
        return list[below(static_cast<int>(list.size()))];
    }
    /// Few different pieces, so that texts often hold each other.
    QString text(int most)
    {
        QString text;
        for (int i = below(most) + 1; i > 0; --i)
            text += oneOf("a b A ab aba . / x K é É 😀 ſ ı");
        return text;
    }
    QString host() { return oneOf("a ab aba b.a") + u'.' + oneOf("com co com.a ab") + oneOf(" . .b :80 :x"); }
    QString address()
    {
        QString text = oneOf("http:// HTTPS:// ftp://u@  x:");
        return text + host() + oneOf(" / /a/ /B") + this->text(5) + oneOf(" .a .ab/ .A? .aba");
    }

    QString expression(int depth = 0)
    {
        QString text;
        for (int i = below(4) + (depth == 0 ? 1 : 0); i > 0; --i) {
            if (depth < 3 && below(4) == 0)
                text += u'(' + expression(depth + 1) + u')';
            else
                text += oneOf("a b ab A B K é / \\. . [ab] [^a] [.] [[:alpha:]] \\w \\b ^ $ s i : [x] com http");
            if (below(3) == 0)
                text += oneOf("* + ? {0,2} {1} {,1} {2} *+ )");
        }
        return below(4) == 0 ? text + u'|' + expression(depth + 1) : text;
    }

private:
    std::mt19937 _engine;
};

QList<BlacklistRule> randomRules(Dice& dice)
{
    QList<BlacklistRule> rules;
    for (int i = dice.below(25); i > 0; --i) {
        BlacklistRule rule;
        rule.type = QList<qint64>{0, 1, 2, 3, 20, 20}[dice.below(6)];
        rule.rule = rule.type == 1   ? dice.oneOf(" http") + dice.text(6)
                    : rule.type == 2 ? dice.host()
                    : rule.type == 3 ? dice.oneOf(". a .ab ba aba .A .b.a") + dice.oneOf("  b")
                                     : dice.expression();
        rule.state = dice.below(4) != 0;
        rule.caseSensitive = dice.below(2) == 0;
        rules.append(rule);
    }
    return rules;
}

std::optional<qsizetype> firstRule(const QList<BlacklistRule>& rules, bool all, const QString& address, Logger& log)
{
    for (qsizetype i = 0; i < rules.size(); ++i) {
        const auto option = rules[i].caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
        if ((all || rules[i].state) && testRule(rules[i], address, option, log))
            return i;
    }
    return std::nullopt;
}

TEST(BlacklistMatcher, AnswersAsTheRulesOneByOne)
{
    Dice dice(7);
    NotedLines log;
    int caught = 0;
    int faults = 0;
    for (int round = 0; round < 400; ++round) {
        const QList<BlacklistRule> rules = randomRules(dice);
        const bool all = dice.below(3) == 0;
        const BlacklistMatcher matcher(rules, all ? BlacklistMatcher::Which::All : BlacklistMatcher::Which::Active);
        for (int i = 0; i < 12; ++i) {
            const QString address = dice.address();
            const auto expected = firstRule(rules, all, address, log);
            const QStringList expectedLines = log.take();
            ASSERT_EQ(matcher.ruleCatching(address, log), expected) << round << ' ' << qPrintable(address);
            ASSERT_EQ(log.take(), expectedLines) << round << ' ' << qPrintable(address);
            caught += expected ? 1 : 0;
            faults += static_cast<int>(expectedLines.size());
        }
    }
    EXPECT_GT(caught, 1000); // The generator must make something to find, and something to miss.
    EXPECT_LT(caught, 4000);
    EXPECT_GT(faults, 100);
}

TEST(BlacklistMatcher, AsksExpressionsOnlyAfterATextTheyNeed)
{
    const struct {
        const char* pattern;
        bool ignoreCase;
        std::vector<std::string> texts;
    } cases[] = {
        {"^https?://[^/]*ads[0-9]+\\.", true, {"ads"}},
        {"^https?://([a-z0-9-]+\\.)*Tracker7\\.(com|net)/", false, {"Tracker7."}},
        {"(banner|Popup)[0-9]", true, {"banner", "popup"}},
        {"(banner|[0-9])x", false, {"x"}},
        {"ab*cde?f", false, {"cd"}},
        {"abc+def", false, {"cdef"}},
        {"(abcd){0,2}ef", false, {"ef"}},
        {"[.]x[[:digit:]]", false, {".x"}},
        {"a\\wb|c", false, {"a", "c"}},
        {"[0-9]+", false, {}},
        {"ads|", false, {}},
        {"é+", false, {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(requiredTexts(c.pattern, c.ignoreCase), c.texts) << c.pattern;
}

} // namespace
