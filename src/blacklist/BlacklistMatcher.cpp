#include "blacklist/BlacklistMatcher.h"

#include "blacklist/RequiredText.h"

#include <algorithm>

namespace quarry {

BlacklistMatcher::BlacklistMatcher(const QList<BlacklistRule>& rules, Which which)
{
    for (qsizetype i = 0; i < rules.size(); ++i) {
        if (rules[i].rule && (rules[i].state || which == Which::All))
            addRule(rules[i], static_cast<std::uint32_t>(i));
    }
    _sensitive.build();
    _insensitive.build();
}

void BlacklistMatcher::addRule(const BlacklistRule& rule, std::uint32_t number)
{
    RuleTexts& texts = rule.caseSensitive ? _sensitive : _insensitive;
    UnitBytes bytes;
    const auto bytesOf = [&](const QString& text) {
        rule.caseSensitive ? appendUnitBytes(text, bytes) : appendFoldedUnitBytes(text, bytes);
        return viewOf(bytes);
    };
    switch (rule.type) {
    case BlacklistType::Text:
        texts.addText(bytesOf(*rule.rule), number);
        break;
    case BlacklistType::Domain:
        if (const QString host = hostForBlacklist(*rule.rule); !host.isEmpty())
            texts.addHost(bytesOf(host), number);
        break;
    case BlacklistType::FileType: {
        const QString dotted = dottedRule(*rule.rule);
        texts.addFileType(bytesOf(dotted), static_cast<std::uint32_t>(dotted.size()), number);
        break;
    }
    case BlacklistType::RegularExpression:
        addExpression(rule, number);
        break;
    default:
        break;
    }
}

void BlacklistMatcher::addExpression(const BlacklistRule& rule, std::uint32_t number)
{
    const auto place = static_cast<std::uint32_t>(_expressions.size());
    Expression& expression = _expressions.emplace_back();
    expression.rule = number;
    expression.pattern = *rule.rule;
    expression.ignoresCase = !rule.caseSensitive;
    try {
        // Nobody asks for groups here, and finding them takes most of the library's time.
        const int options = CSRegex::NoSubexpressions | (expression.ignoresCase ? CSRegex::IgnoreCase : CSRegex::None);
        expression.regex.emplace(*rule.rule, options);
        RuleTexts& texts = rule.caseSensitive ? _sensitive : _insensitive;
        for (const std::string& text : requiredTexts(rule.rule->toUtf8(), expression.ignoresCase)) {
            texts.addExpression(text, place);
            expression.isAlwaysAsked = false;
        }
    } catch (const CSRegexException& exception) {
        expression.reason = exception.reason();
    }
    if (expression.isAlwaysAsked)
        _alwaysAsked.push_back(place);
    else if (expression.ignoresCase)
        _ignoringCase.push_back(place);
}

std::optional<qsizetype> BlacklistMatcher::ruleCatching(const QString& address, Logger& log) const
{
    RuleFindings findings;
    UnitBytes bytes;
    appendUnitBytes(address, bytes);
    const bool isAscii = bytes.size() == address.size();
    const QStringView extension = fileExtension(address);
    const auto dottedUnits = extension.isEmpty() ? 0U : static_cast<std::uint32_t>(extension.size()) + 1;
    if (!_sensitive.isEmpty())
        _sensitive.findIn(viewOf(bytes), dottedUnits, findings);
    if (!_insensitive.isEmpty()) {
        bytes.clear();
        appendFoldedUnitBytes(address, bytes);
        _insensitive.findIn(viewOf(bytes), dottedUnits, findings);
    }
    if (_sensitive.hasHosts() || _insensitive.hasHosts())
        findHosts(address, findings);
    if (!_expressions.empty()) {
        completeExpressions(isAscii, findings);
        const QByteArray utf8 = findings.expressions.isEmpty() ? QByteArray() : address.toUtf8();
        for (const std::uint32_t place : findings.expressions) {
            const Expression& expression = _expressions[place];
            if (expression.rule > findings.first)
                break;
            if (matches(expression, utf8, log))
                findings.foundRule(expression.rule);
        }
    }
    return findings.first == RuleFindings::None ? std::nullopt : std::optional<qsizetype>(findings.first);
}

void BlacklistMatcher::findHosts(const QString& address, RuleFindings& findings) const
{
    const QString host = hostForBlacklist(address);
    if (host.isEmpty())
        return;
    UnitBytes bytes;
    if (_sensitive.hasHosts()) {
        appendUnitBytes(host, bytes);
        _sensitive.findHost(viewOf(bytes), findings);
    }
    if (_insensitive.hasHosts()) {
        bytes.clear();
        appendFoldedUnitBytes(host, bytes);
        _insensitive.findHost(viewOf(bytes), findings);
    }
}

void BlacklistMatcher::completeExpressions(bool isAscii, RuleFindings& findings) const
{
    auto& asked = findings.expressions;
    asked.append(_alwaysAsked.data(), static_cast<qsizetype>(_alwaysAsked.size()));
    if (!isAscii)
        asked.append(_ignoringCase.data(), static_cast<qsizetype>(_ignoringCase.size()));
    std::sort(asked.begin(), asked.end());
    asked.erase(std::unique(asked.begin(), asked.end()), asked.end());
}

bool BlacklistMatcher::matches(const Expression& expression, const QByteArray& utf8, Logger& log)
{
    if (!expression.regex) {
        log.logString(regexFaultLine(expression.pattern, expression.reason));
        return false;
    }
    const std::lock_guard lock(expression.mutex);
    expression.regex->beginMatchingData(utf8);
    const bool found = expression.regex->matchNext();
    expression.regex->finishMatching();
    return found;
}

} // namespace quarry
