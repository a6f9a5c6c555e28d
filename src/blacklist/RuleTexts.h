#pragma once

#include "blacklist/PatternAutomaton.h"
#include "blacklist/SubstringIndex.h"

#include <QStringView>
#include <QVarLengthArray>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quarry {

/// UTF-16 units as bytes: ASCII as it is, any other unit as three bytes of its own. A text holds another one exactly
/// if its bytes hold the other's.
using UnitBytes = QVarLengthArray<char, 512>;
void appendUnitBytes(QStringView text, UnitBytes& bytes);
/// The same of the text with its case folded.
void appendFoldedUnitBytes(QStringView text, UnitBytes& bytes);
[[nodiscard]] inline std::string_view viewOf(const UnitBytes& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

/// What was found about one address: the first rule that certainly catches it, and expressions that may.
struct RuleFindings {
    static constexpr std::uint32_t None = 0xffffffff;
    std::uint32_t first = None;
    QVarLengthArray<std::uint32_t, 64> expressions; ///< In no order, maybe several times.

    void foundRule(std::uint32_t rule) { first = rule < first ? rule : first; }
};

/// The texts of all rules of one case sensitivity, looked for in one pass. All texts are bytes as appendUnitBytes
/// or, for rules that ignore case, appendFoldedUnitBytes makes them. Immutable after build, so any thread may look.
class RuleTexts final {
public:
    // Rules are added in the order of their numbers. An empty text is found nowhere.
    void addText(std::string_view text, std::uint32_t rule);
    /// A dotted rule of that many units.
    void addFileType(std::string_view text, std::uint32_t units, std::uint32_t rule);
    void addHost(std::string_view host, std::uint32_t rule);
    /// A text without which the expression need not be asked.
    void addExpression(std::string_view text, std::uint32_t expression);
    void build();

    [[nodiscard]] bool isEmpty() const { return _automaton.isEmpty(); }
    [[nodiscard]] bool hasHosts() const { return !_hostAutomaton.isEmpty(); }

    /// `dottedUnits` is the length of the address's extension with its dot, 0 when it has none.
    void findIn(std::string_view address, std::uint32_t dottedUnits, RuleFindings& findings) const;
    void findHost(std::string_view host, RuleFindings& findings) const;

private:
    struct Pattern {
        std::uint32_t text = RuleFindings::None;     ///< The first text rule.
        std::uint32_t fileType = RuleFindings::None; ///< The first file-type rule.
        std::uint32_t units = 0;                     ///< Of the file-type rule.
        std::vector<std::uint32_t> expressions;
    };
    [[nodiscard]] Pattern& pattern(std::string_view text);

    std::vector<std::string> _texts, _hosts;
    std::unordered_map<std::string, std::uint32_t> _textNumbers, _hostNumbers;
    std::vector<Pattern> _patterns;
    std::vector<std::uint32_t> _hostRules; ///< By host: the first rule.
    PatternAutomaton _automaton, _hostAutomaton;
    SubstringIndex _hostIndex;
};

} // namespace quarry
