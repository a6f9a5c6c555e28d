#pragma once

#include "log/Logger.h"

#include <QString>

#include <optional>

namespace quarry {

/// What a rule of each type looks for; a rule of any other type catches nothing.
namespace BlacklistType {
constexpr qint64 Text = 1;     ///< The rule occurs anywhere in the address.
constexpr qint64 Domain = 2;   ///< The shorter of the two host names occurs inside the longer.
constexpr qint64 FileType = 3; ///< The address's extension is as long as the rule, which occurs in the address.
constexpr qint64 RegularExpression = 20; ///< The rule, a POSIX extended expression, matches the address.
} // namespace BlacklistType

/// What a rule says: a plain value.
struct BlacklistRule {
    std::optional<QString> rule;
    qint64 type = 0;
    bool state = false; ///< In force.
    bool caseSensitive = false;

    friend bool operator==(const BlacklistRule&, const BlacklistRule&) = default;
};

/// Whether the rule catches the address, whatever its state. An expression that does not compile catches nothing and
/// is logged. This is what a rule means; BlacklistMatcher gives the same answers for a whole list, faster.
[[nodiscard]] bool testRule(const BlacklistRule& rule, const QString& address, Qt::CaseSensitivity option, Logger& log);

// --- What the tests are made of ---------------------------------------------------------------------------------

/// Upper and lower case made one, without locale; as many units as before.
[[nodiscard]] QString caseFolded(QStringView text);
/// The host of an address or of a text that lacks the scheme; empty when there is none.
[[nodiscard]] QString hostForBlacklist(const QString& text);
/// The text after the last "." of the last path component, empty when there is none. A query or fragment counts as
/// part of the component: the text is cut, not the address.
[[nodiscard]] QStringView fileExtension(QStringView address);
/// With "." in front when it holds none.
[[nodiscard]] QString dottedRule(const QString& rule);
/// The log line about an expression that does not compile.
[[nodiscard]] QString regexFaultLine(const QString& rule, const QString& reason);

} // namespace quarry
