// A thousand rules on ten thousand addresses: our matcher, and the C library's functions rule by rule, with everything
// prepared beforehand that can be. Both must name the same rule for every address; then the medians are printed.

#include "BlacklistSamples.h"
#include "Times.h"
#include "blacklist/BlacklistMatcher.h"

#include <locale.h>
#include <regex.h>
#include <string.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace quarry;

constexpr int RuleCount = 1000;
constexpr int AddressCount = 10000;
constexpr int Runs = 5;
constexpr int NoRule = -1;

class NoLog final : public Logger {
public:
    void logString(const QString& text) override { std::printf("%s\n", qPrintable(text)); }
};

bool holds(const std::string& text, const std::string& part)
{
    return memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

/// A text as it is and with its case folded.
struct BothCases {
    std::string text[2];
    explicit BothCases(const QString& given) : text{given.toStdString(), caseFolded(given).toStdString()} {}
    const std::string& of(const BlacklistRule& rule) const { return text[rule.caseSensitive ? 0 : 1]; }
};

/// Texts, domains and file types with memmem, a rule after the other.
class PlainTexts final {
public:
    PlainTexts(const QList<BlacklistRule>& rules, const QList<QString>& addresses)
    {
        for (const BlacklistRule& rule : rules) {
            const QString text = rule.type == BlacklistType::Domain     ? hostForBlacklist(*rule.rule)
                                 : rule.type == BlacklistType::FileType ? dottedRule(*rule.rule)
                                                                        : *rule.rule;
            _rules.push_back({rule, BothCases(text).of(rule)});
        }
        for (const QString& address : addresses)
            _addresses.push_back({BothCases(address), BothCases(hostForBlacklist(address)),
                                  static_cast<std::size_t>(fileExtension(address).size())});
    }

    std::vector<int> run() const
    {
        std::vector<int> answers;
        for (const Address& address : _addresses) {
            const auto found =
                std::find_if(_rules.begin(), _rules.end(), [&](const Rule& rule) { return catches(rule, address); });
            answers.push_back(found == _rules.end() ? NoRule : static_cast<int>(found - _rules.begin()));
        }
        return answers;
    }

private:
    struct Rule {
        BlacklistRule rule;
        std::string text;
    };
    struct Address {
        BothCases text, host;
        std::size_t extension;
    };

    static bool catches(const Rule& rule, const Address& address)
    {
        const std::string& host = address.host.of(rule.rule);
        switch (rule.rule.type) {
        case BlacklistType::Domain:
            return rule.text.size() >= host.size() ? holds(rule.text, host) : holds(host, rule.text);
        case BlacklistType::FileType:
            return address.extension > 0 && rule.text.size() == address.extension + 1 &&
                   holds(address.text.of(rule.rule), rule.text);
        default:
            return holds(address.text.of(rule.rule), rule.text);
        }
    }

    std::vector<Rule> _rules;
    std::vector<Address> _addresses;
};

/// Expressions with regexec, compiled beforehand and without groups.
class PlainExpressions final {
public:
    PlainExpressions(const QList<BlacklistRule>& rules, const QList<QString>& addresses)
        : _compiled(static_cast<std::size_t>(rules.size()))
    {
        const locale_t previous = uselocale(newlocale(LC_ALL_MASK, "C.UTF-8", nullptr));
        for (std::size_t i = 0; i < _compiled.size(); ++i) {
            const BlacklistRule& rule = rules[static_cast<qsizetype>(i)];
            const int flags = REG_EXTENDED | REG_NOSUB | (rule.caseSensitive ? 0 : REG_ICASE);
            if (regcomp(&_compiled[i], rule.rule->toUtf8().constData(), flags) != 0)
                std::printf("%s does not compile\n", qPrintable(*rule.rule));
        }
        for (const QString& address : addresses)
            _addresses.push_back(address.toStdString());
        uselocale(previous);
    }
    ~PlainExpressions()
    {
        for (regex_t& regex : _compiled)
            regfree(&regex);
    }
    PlainExpressions(const PlainExpressions&) = delete;
    PlainExpressions& operator=(const PlainExpressions&) = delete;

    std::vector<int> run() const
    {
        std::vector<int> answers;
        for (const std::string& address : _addresses) {
            const auto found = std::find_if(_compiled.begin(), _compiled.end(), [&](const regex_t& regex) {
                return regexec(&regex, address.c_str(), 0, nullptr, 0) == 0;
            });
            answers.push_back(found == _compiled.end() ? NoRule : static_cast<int>(found - _compiled.begin()));
        }
        return answers;
    }

private:
    std::vector<regex_t> _compiled;
    std::vector<std::string> _addresses;
};

std::vector<int> answersOf(const BlacklistMatcher& matcher, const QList<QString>& addresses)
{
    NoLog log;
    std::vector<int> answers;
    for (const QString& address : addresses)
        answers.push_back(static_cast<int>(matcher.ruleCatching(address, log).value_or(NoRule)));
    return answers;
}

/// The rules that were really asked: those up to the first that catches.
double testCount(const std::vector<int>& answers)
{
    double count = 0;
    for (const int answer : answers)
        count += answer == NoRule ? RuleCount : answer + 1;
    return count;
}

template <typename Plain>
bool measure(const char* name, const QList<BlacklistRule>& rules, const QList<QString>& addresses)
{
    const BlacklistMatcher matcher(rules, BlacklistMatcher::Which::Active);
    const Plain plain(rules, addresses);
    const std::vector<int> expected = plain.run();
    if (answersOf(matcher, addresses) != expected) {
        std::printf("%s: the two sides differ\n", name);
        return false;
    }
    const double ours = bench::Times(Runs, [&] { (void)answersOf(matcher, addresses); }).median();
    const double theirs = bench::Times(Runs, [&] { (void)plain.run(); }).median();
    const double tests = testCount(expected);
    std::printf(
        "%-12s %d rules, %lld addresses, %lld caught: %8.1f million tests/s   rule by rule %8.1f   %5.1f times\n", name,
        RuleCount, static_cast<long long>(addresses.size()),
        static_cast<long long>(AddressCount - std::count(expected.begin(), expected.end(), NoRule)), tests / ours / 1e6,
        tests / theirs / 1e6, theirs / ours);
    return true;
}

} // namespace

int main()
{
    const QList<QString> addresses = bench::sampleAddresses(AddressCount);
    bool isSame = measure<PlainTexts>("texts", bench::sampleTextRules(RuleCount), addresses);
    isSame = measure<PlainExpressions>("expressions", bench::sampleExpressionRules(RuleCount), addresses) && isSame;
    return isSame ? 0 : 1;
}
