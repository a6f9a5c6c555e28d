#pragma once

#include <algorithm>
#include <ctime>
#include <vector>

namespace quarry::bench {

/// How long some work takes, several times over. Processor time: what else runs on the machine does not count.
class Times final {
public:
    template <typename Work>
    Times(int runs, const Work& work)
    {
        for (int run = 0; run < runs; ++run) {
            const std::clock_t begin = std::clock();
            work();
            _seconds.push_back(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
        }
        std::sort(_seconds.begin(), _seconds.end());
    }
    [[nodiscard]] double median() const { return _seconds[_seconds.size() / 2]; }
    [[nodiscard]] double best() const { return _seconds.front(); }

private:
    std::vector<double> _seconds;
};

} // namespace quarry::bench
