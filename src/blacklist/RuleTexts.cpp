#include "blacklist/RuleTexts.h"

#include "blacklist/BlacklistRule.h"

#include <algorithm>
#include <limits>

namespace quarry {

namespace {

void appendUnit(char16_t unit, UnitBytes& bytes)
{
    if (unit < 0x80) {
        bytes.append(static_cast<char>(unit));
        return;
    }
    bytes.append(static_cast<char>(0xe0 | (unit >> 12)));
    bytes.append(static_cast<char>(0x80 | ((unit >> 6) & 0x3f)));
    bytes.append(static_cast<char>(0x80 | (unit & 0x3f)));
}

char16_t foldedAscii(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

} // namespace

void appendUnitBytes(QStringView text, UnitBytes& bytes)
{
    bytes.reserve(bytes.size() + text.size());
    for (const QChar c : text)
        appendUnit(c.unicode(), bytes);
}

void appendFoldedUnitBytes(QStringView text, UnitBytes& bytes)
{
    const auto isAscii = [](QChar c) { return c.unicode() < 0x80; };
    if (!std::all_of(text.begin(), text.end(), isAscii)) {
        appendUnitBytes(caseFolded(text), bytes);
        return;
    }
    bytes.reserve(bytes.size() + text.size());
    for (const QChar c : text)
        bytes.append(static_cast<char>(foldedAscii(c.unicode())));
}

RuleTexts::Pattern& RuleTexts::pattern(std::string_view text)
{
    const auto [place, isNew] =
        _textNumbers.try_emplace(std::string(text), static_cast<std::uint32_t>(_patterns.size()));
    if (isNew) {
        _texts.emplace_back(text);
        _patterns.emplace_back();
    }
    return _patterns[place->second];
}

void RuleTexts::addText(std::string_view text, std::uint32_t rule)
{
    if (text.empty())
        return;
    Pattern& known = pattern(text);
    known.text = std::min(known.text, rule);
}

void RuleTexts::addFileType(std::string_view text, std::uint32_t units, std::uint32_t rule)
{
    Pattern& known = pattern(text);
    known.fileType = std::min(known.fileType, rule);
    known.units = units;
}

void RuleTexts::addHost(std::string_view host, std::uint32_t rule)
{
    if (!_hostNumbers.try_emplace(std::string(host), static_cast<std::uint32_t>(_hosts.size())).second)
        return;
    _hosts.emplace_back(host);
    _hostRules.push_back(rule);
}

void RuleTexts::addExpression(std::string_view text, std::uint32_t expression)
{
    pattern(text).expressions.push_back(expression);
}

void RuleTexts::build()
{
    _automaton = PatternAutomaton(_texts);
    _hostAutomaton = PatternAutomaton(_hosts);
    _hostIndex = SubstringIndex(std::move(_hosts));
    _texts.clear();
    _hosts.clear();
    _textNumbers.clear();
    _hostNumbers.clear();
}

void RuleTexts::findIn(std::string_view address, std::uint32_t dottedUnits, RuleFindings& findings) const
{
    _automaton.scan(address, [&](std::uint32_t number) {
        const Pattern& found = _patterns[number];
        findings.foundRule(found.text);
        if (found.units == dottedUnits)
            findings.foundRule(found.fileType);
        for (const std::uint32_t expression : found.expressions)
            findings.expressions.append(expression);
    });
}

void RuleTexts::findHost(std::string_view host, RuleFindings& findings) const
{
    _hostAutomaton.scan(host, [&](std::uint32_t number) { findings.foundRule(_hostRules[number]); });
    if (const std::uint32_t longer = _hostIndex.firstHolding(host); longer != SubstringIndex::None)
        findings.foundRule(_hostRules[longer]);
}

} // namespace quarry
