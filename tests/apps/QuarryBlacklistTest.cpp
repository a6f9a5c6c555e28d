// The shared rules and the log: what commands change is what the file holds, and what it holds decides the tests.

#include "support/QuarryProcess.h"
#include "support/TemporaryHome.h"

#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

Ran blacklist(const TemporaryHome& home, const QStringList& arguments)
{
    return runQuarry(home.path(), QStringList{u"blacklist"_s} + arguments);
}

/// "type rule" of each rule, "!" in front of one that is not in force.
QStringList rulesOf(const TemporaryHome& home)
{
    QStringList rules;
    for (const QJsonValue& rule : blacklist(home, {u"list"_s, u"--json"_s}).json()[u"rules"_s].toArray()) {
        EXPECT_EQ(rule[u"number"_s].toInt(), rules.size() + 1);
        rules.append(QLatin1String(rule[u"enabled"_s].toBool() ? "" : "!") + rule[u"type"_s].toString() + u' ' +
                     rule[u"rule"_s].toString());
    }
    return rules;
}

TEST(QuarryBlacklist, SaysWhichRuleCatchesAnAddress)
{
    const TemporaryHome home;
    for (const QStringList& rule : {QStringList{u"--type"_s, u"regex"_s, u"[?&]utm_[a-z]+="_s},
                                    {u"--type"_s, u"file"_s, u"exe"_s},
                                    {u"--type"_s, u"domain"_s, u"ads.test"_s},
                                    {u"--case"_s, u"Sponsored"_s},
                                    {u"--disabled"_s, u"page"_s}})
        EXPECT_EQ(blacklist(home, QStringList{u"add"_s} + rule).status, 0);
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
    const QStringList rules = rulesOf(home);
    for (const auto& each : cases) {
        const QJsonObject result = blacklist(home, {u"test"_s, each.address, u"--json"_s}).json();
        EXPECT_EQ(result[u"caught"_s].toBool(), !each.rule.isEmpty()) << each.address.toStdString();
        const int number = result[u"rule"_s][u"number"_s].toInt();
        EXPECT_EQ(number, rules.indexOf(each.rule) + 1) << each.address.toStdString();
    }
    EXPECT_EQ(blacklist(home, {u"test"_s, u"http://www.ads.test/"_s}).out,
              u"http://www.ads.test/ is caught by domain rule \"ads.test\" (3)\n"_s);
    EXPECT_EQ(blacklist(home, {u"test"_s, u"http://h.org/"_s}).out, u"No rule catches http://h.org/\n"_s);
}

TEST(QuarryBlacklist, ChangesTheRulesThatAreNamed)
{
    const TemporaryHome home;
    EXPECT_EQ(blacklist(home, {u"add"_s, u"b"_s, u"a"_s, u"2"_s}).status, 0);
    EXPECT_EQ(blacklist(home, {u"add"_s, u"--type"_s, u"file"_s, u"a"_s}).status, 0);
    EXPECT_EQ(blacklist(home, {u"add"_s, u"a"_s}).out, u"There already: text rule \"a\"\n"_s);
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
        EXPECT_EQ(blacklist(home, each.arguments).status, 0);
        EXPECT_EQ(rulesOf(home), each.rules) << each.arguments.join(u' ').toStdString();
    }
    EXPECT_EQ(blacklist(home, {u"remove"_s, u"a"_s, u"gone"_s}).status, 2);
    EXPECT_EQ(rulesOf(home).size(), 2) << "all of them or none";
}

TEST(QuarryBlacklist, AFileThatMakesNoSenseIsNamedAndLeftAlone)
{
    const TemporaryHome home;
    ASSERT_TRUE(writeFile(home->blacklistFile(), "nonsense"));
    for (const QStringList& arguments : {QStringList{u"list"_s}, {u"test"_s, u"http://h/"_s}, {u"add"_s, u"x"_s}}) {
        const Ran ran = blacklist(home, arguments);
        EXPECT_EQ(ran.status, 1);
        EXPECT_TRUE(ran.err.contains(u"Blacklist cannot be understood"_s)) << ran.err.toStdString();
    }
    EXPECT_EQ(contentOf(home->blacklistFile()), "nonsense");
}

TEST(QuarryLog, ShowsTheLastLinesAndNothingThatSteersATerminal)
{
    const TemporaryHome home;
    EXPECT_EQ(runQuarry(home.path(), {u"log"_s}).out, u"The log is empty\n"_s);
    ASSERT_TRUE(writeFile(home->logFile(), "one\ntwo\nthr\x1b[31mee\n"));
    EXPECT_EQ(runQuarry(home.path(), {u"log"_s, u"--lines"_s, u"2"_s}).out, u"two\nthr[31mee\n"_s);
    EXPECT_EQ(runQuarry(home.path(), {u"log"_s, u"--json"_s}).json()[u"lines"_s].toArray().size(), 3);
}

} // namespace
} // namespace quarry::test
