#include "blacklist/PatternAutomaton.h"

#include <algorithm>
#include <numeric>

namespace quarry {

PatternAutomaton::PatternAutomaton(const std::vector<std::string>& patterns)
{
    std::vector<std::uint32_t> sorted(patterns.size());
    std::iota(sorted.begin(), sorted.end(), 0U);
    std::sort(sorted.begin(), sorted.end(), [&](auto a, auto b) { return patterns[a] < patterns[b]; });

    /// The sorted patterns that begin with a node's text.
    struct Share {
        std::size_t begin, end, depth;
    };
    std::vector<Share> shares{{0, sorted.size(), 0}};
    std::vector<std::uint32_t> parents{0};
    _nodes.emplace_back();
    _labels.push_back(0);
    for (std::size_t n = 0; n < _nodes.size(); ++n) {
        auto [at, end, depth] = shares[n];
        if (at < end && patterns[sorted[at]].size() == depth)
            _nodes[n].pattern = sorted[at++];
        _nodes[n].firstChild = static_cast<std::uint32_t>(_nodes.size());
        while (at < end) {
            const char label = patterns[sorted[at]][depth];
            const std::size_t begin = at;
            while (at < end && patterns[sorted[at]][depth] == label)
                ++at;
            shares.push_back({begin, at, depth + 1});
            parents.push_back(static_cast<std::uint32_t>(n));
            _nodes.emplace_back();
            _labels.push_back(static_cast<unsigned char>(label));
            ++_nodes[n].childCount;
        }
    }
    addFallbacks(parents);
}

void PatternAutomaton::addFallbacks(const std::vector<std::uint32_t>& parents)
{
    for (std::uint32_t n = 1; n < _nodes.size(); ++n) {
        if (parents[n] == 0)
            _fromStart[_labels[n]] = n;
    }
    // Nodes lie by depth, so what a node falls back to is complete before it.
    for (std::uint32_t n = 1; n < _nodes.size(); ++n) {
        Node& node = _nodes[n];
        node.fallback = parents[n] == 0 ? 0 : step(_nodes[parents[n]].fallback, _labels[n]);
        node.reported = node.pattern != None ? n : _nodes[node.fallback].reported;
    }
}

} // namespace quarry
