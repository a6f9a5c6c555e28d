#pragma once

#include "blacklist/BlacklistRule.h"
#include "blacklist/RuleTexts.h"
#include "text/CSRegex.h"

#include <QList>

#include <deque>
#include <mutex>
#include <optional>

namespace quarry {

/// A list of rules made ready for many tests: every text, domain and file-type rule is looked for in one pass over
/// the address, every expression is compiled once and asked only when the address holds a text it needs. The answers,
/// and the lines logged about expressions that do not compile, are those of the rules tried one by one in order.
///
/// Unchanging to its users and thread-safe.
class BlacklistMatcher final {
public:
    enum class Which {
        Active, ///< A shared list: inactive rules catch nothing.
        All,    ///< The private rules of a query: their state does not count.
    };
    explicit BlacklistMatcher(const QList<BlacklistRule>& rules, Which which);

    /// The place in the list of the first rule that catches the address; none when no rule does.
    [[nodiscard]] std::optional<qsizetype> ruleCatching(const QString& address, Logger& log) const;
    [[nodiscard]] bool isAddressFiltered(const QString& address, Logger& log) const
    {
        return ruleCatching(address, log).has_value();
    }

private:
    /// A rule of the expression type. An expression works for one thread at a time.
    struct Expression {
        std::uint32_t rule = 0;
        QString pattern;
        mutable std::optional<CSRegex> regex; ///< None: it does not compile, for the reason given.
        QString reason;
        bool ignoresCase = false;
        bool isAlwaysAsked = true; ///< No text is known without which it cannot match.
        mutable std::mutex mutex;
    };

    void addRule(const BlacklistRule& rule, std::uint32_t number);
    void addExpression(const BlacklistRule& rule, std::uint32_t number);
    void findHosts(const QString& address, RuleFindings& findings) const;
    /// Adds those that are asked whatever texts were found, and puts them in order.
    void completeExpressions(bool isAscii, RuleFindings& findings) const;
    [[nodiscard]] static bool matches(const Expression& expression, const QByteArray& utf8, Logger& log);

    RuleTexts _sensitive, _insensitive;
    std::deque<Expression> _expressions; ///< By ascending rule.
    std::vector<std::uint32_t> _alwaysAsked;
    /// Asked for an address that is not ASCII: the library then knows more pairs of cases than the texts do.
    std::vector<std::uint32_t> _ignoringCase;
};

} // namespace quarry
