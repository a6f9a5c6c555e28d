// The shared rules and the log: what commands change is what the file holds, and what it holds decides the tests.

#include "QuarryRig.h"

#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class QuarryBlacklist : public QuarryTest {
protected:
    [[nodiscard]] Ran blacklist(const QStringList& arguments) const
    {
        return run(QStringList{u"blacklist"_s} + arguments);
    }
    /// "type rule" of each rule, "!" in front of one that is not in force.
    [[nodiscard]] QStringList rules() const
    {
        QStringList rules;
        for (const QJsonValue& rule : run("blacklist list --json").json()[u"rules"_s].toArray()) {
            EXPECT_EQ(rule[u"number"_s].toInt(), rules.size() + 1);
            rules.append(QLatin1String(rule[u"enabled"_s].toBool() ? "" : "!") + rule[u"type"_s].toString() + u' ' +
                         rule[u"rule"_s].toString());
        }
        return rules;
    }
};

TEST_F(QuarryBlacklist, SaysWhichRuleCatchesAnAddress)
{
    for (const QStringList& rule : {QStringList{u"--type"_s, u"regex"_s, u"[?&]utm_[a-z]+="_s},
                                    {u"--type"_s, u"file"_s, u"exe"_s},
                                    {u"--type"_s, u"domain"_s, u"ads.test"_s},
                                    {u"--case"_s, u"Sponsored"_s},
                                    {u"--disabled"_s, u"page"_s}})
        EXPECT_EQ(blacklist(QStringList{u"add"_s} + rule).status, 0);
    const struct {
        QString address;
        QString rule; ///< None: not caught.
    } cases[] = {
        {u"http://h.org/Sponsored"_s, u"text Sponsored"_s},
        {u"http://h.org/sponsored"_s, {}},
        {u"http://www.ads.test/page"_s, u"domain ads.test"_s},
        {u"http://h.org/setup.EXE"_s, u"file exe"_s},
        {u"http://h.org/page?a&utm_x=1"_s, u"regex [?&]utm_[a-z]+="_s},
    };
    const QStringList all = rules();
    for (const auto& each : cases) {
        const QJsonObject result = blacklist({u"test"_s, each.address, u"--json"_s}).json();
        EXPECT_EQ(result[u"caught"_s].toBool(), !each.rule.isEmpty()) << each.address.toStdString();
        const int number = result[u"rule"_s][u"number"_s].toInt();
        EXPECT_EQ(number, all.indexOf(each.rule) + 1) << each.address.toStdString();
    }
    EXPECT_EQ(run("blacklist test http://www.ads.test/").out,
              u"http://www.ads.test/ is caught by domain rule \"ads.test\" (3)\n"_s);
    EXPECT_EQ(run("blacklist test http://h.org/").out, u"No rule catches http://h.org/\n"_s);
}

TEST_F(QuarryBlacklist, ChangesTheRulesThatAreNamed)
{
    EXPECT_EQ(run("blacklist add b a 2").status, 0);
    EXPECT_EQ(run("blacklist add --type file a").status, 0);
    EXPECT_EQ(run("blacklist add a").out, u"There already: text rule \"a\"\n"_s);
    const struct {
        QStringList arguments;
        QStringList rules; ///< Afterwards.
    } cases[] = {
        {{u"list"_s}, {u"text b"_s, u"text a"_s, u"text 2"_s, u"file a"_s}},
        {{u"disable"_s, u"a"_s, u"1"_s}, {u"!text b"_s, u"!text a"_s, u"text 2"_s, u"!file a"_s}},
        {{u"enable"_s, u"4"_s}, {u"!text b"_s, u"!text a"_s, u"text 2"_s, u"file a"_s}},
        {{u"remove"_s, u"2"_s, u"1"_s}, {u"!text a"_s, u"file a"_s}},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(blacklist(each.arguments).status, 0);
        EXPECT_EQ(rules(), each.rules) << each.arguments.join(u' ').toStdString();
    }
    EXPECT_EQ(run("blacklist remove a gone").status, 2);
    EXPECT_EQ(rules().size(), 2) << "all of them or none";
}

TEST_F(QuarryBlacklist, AFileThatMakesNoSenseIsNamedAndLeftAlone)
{
    ASSERT_TRUE(writeFile(home->blacklistFile(), "nonsense"));
    for (const QStringList& arguments : {QStringList{u"list"_s}, {u"test"_s, u"http://h/"_s}, {u"add"_s, u"x"_s}}) {
        const Ran ran = blacklist(arguments);
        EXPECT_EQ(ran.status, 1);
        EXPECT_TRUE(ran.err.contains(u"Blacklist cannot be understood"_s)) << ran.err.toStdString();
    }
    EXPECT_EQ(contentOf(home->blacklistFile()), "nonsense");
}

TEST_F(QuarryTest, LogShowsTheLastLinesAndNothingThatSteersATerminal)
{
    EXPECT_EQ(run("log").out, u"The log is empty\n"_s);
    ASSERT_TRUE(writeFile(home->logFile(), "one\ntwo\nthr\x1b[31mee\n"));
    EXPECT_EQ(run("log --lines 2").out, u"two\nthr[31mee\n"_s);
    EXPECT_EQ(run("log --json").json()[u"lines"_s].toArray().size(), 3);
}

} // namespace
} // namespace quarry::test
