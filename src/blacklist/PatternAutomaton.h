#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quarry {

/// Finds all of many byte patterns in a text in one pass over it, however many patterns there are. Immutable once
/// made, so any thread may scan.
class PatternAutomaton final {
public:
    static constexpr std::uint32_t None = 0xffffffff;

    PatternAutomaton() : PatternAutomaton(std::vector<std::string>()) {}
    /// Patterns are known by their place in the list. It must hold no empty one and none twice.
    explicit PatternAutomaton(const std::vector<std::string>& patterns);

    [[nodiscard]] bool isEmpty() const { return _nodes.size() == 1; }

    /// Calls found(number of the pattern) for every place where a pattern ends.
    template <typename Found>
    void scan(std::string_view text, Found&& found) const
    {
        std::uint32_t state = 0;
        for (const char c : text) {
            state = step(state, static_cast<unsigned char>(c));
            for (std::uint32_t n = _nodes[state].reported; n != 0; n = _nodes[_nodes[n].fallback].reported)
                found(_nodes[n].pattern);
        }
    }

private:
    /// One text that begins a pattern. Number 0 is the empty one; the ones that are longer by a byte lie side by side.
    struct Node {
        std::uint32_t firstChild = 0;
        std::uint32_t childCount = 0;
        std::uint32_t fallback = 0;   ///< The longest proper ending of this text that begins a pattern.
        std::uint32_t reported = 0;   ///< The longest ending, this text included, that is a pattern; 0 for none.
        std::uint32_t pattern = None; ///< The pattern that this text is.
    };

    [[nodiscard]] std::uint32_t child(const Node& node, unsigned char byte) const
    {
        for (std::uint32_t n = node.firstChild; n < node.firstChild + node.childCount; ++n) {
            if (_labels[n] == byte)
                return n;
        }
        return 0;
    }
    [[nodiscard]] std::uint32_t step(std::uint32_t state, unsigned char byte) const
    {
        for (; state != 0; state = _nodes[state].fallback) {
            if (const std::uint32_t next = child(_nodes[state], byte); next != 0)
                return next;
        }
        return _fromStart[byte];
    }
    void addFallbacks(const std::vector<std::uint32_t>& parents);

    std::vector<Node> _nodes;
    std::vector<unsigned char> _labels; ///< By node: its last byte.
    std::array<std::uint32_t, 256> _fromStart{};
};

} // namespace quarry
