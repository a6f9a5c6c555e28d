#include "model/ResultComparator.h"

#include "model/RecordData.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace quarry {

namespace {

/// What the comparator asks of one record, read out once: sorting asks many times. Texts stay in the record.
struct SortKey {
    double date = 0.0;
    std::int64_t number = 0; ///< The rating where ratings are compared, else the rank.
    const StoredText* text = nullptr;
    std::uint32_t index = 0;
    bool hasDate = false;
    bool hasNumber = false;
    bool isRead = false;
    bool hasReadEntry = false;
};

SortKey keyOf(const ResultRecord& record, std::int32_t order)
{
    const RecordData& data = record.data();
    SortKey key;
    key.hasReadEntry = data.has(RecordKey::UserSaw);
    key.isRead = key.hasReadEntry && data.flag(RecordKey::UserSaw);
    key.hasDate = data.has(RecordKey::DateOfFind);
    key.date = data.date;
    key.hasNumber = data.has(order == ByRating ? RecordKey::Rating : RecordKey::Rank);
    key.number = order == ByRating ? data.rating : data.rank;
    if (order == ByAddress || order == ByTitle) {
        const RecordKey text = order == ByAddress ? RecordKey::Url : RecordKey::Title;
        key.text = data.has(text) ? &data.text(text) : nullptr;
    }
    return key;
}

template <typename T>
int compareValues(const T& a, const T& b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

int oldestFirst(const SortKey& a, const SortKey& b)
{
    return a.hasDate && b.hasDate ? compareValues(a.date, b.date) : 0;
}

int newestFirst(const SortKey& a, const SortKey& b)
{
    return oldestFirst(b, a);
}

int lowestRankFirst(const SortKey& a, const SortKey& b)
{
    return a.hasNumber && b.hasNumber ? compareValues(a.number, b.number) : newestFirst(a, b);
}

int highestRatingFirst(const SortKey& a, const SortKey& b)
{
    if (a.hasNumber && b.hasNumber)
        return compareValues(b.number, a.number);
    if (a.hasNumber || b.hasNumber)
        return a.hasNumber ? -1 : 1;
    return newestFirst(a, b);
}

int byText(const SortKey& a, const SortKey& b)
{
    return a.text && b.text ? compareValues(*a.text, *b.text) : 0;
}

int unreadFirst(const SortKey& a, const SortKey& b)
{
    if (a.isRead != b.isRead)
        return a.isRead ? 1 : -1;
    return a.hasReadEntry && b.hasReadEntry ? 0 : newestFirst(a, b);
}

/// An order without a meaning: the read state decides only what is compared.
int byUnknownOrder(const SortKey& a, const SortKey& b)
{
    return a.isRead != b.isRead ? lowestRankFirst(a, b) : unreadFirst(a, b);
}

int compareKeys(const SortKey& a, const SortKey& b, std::int32_t order)
{
    switch (order) {
    case OldestFirst:
        return oldestFirst(a, b);
    case NewestFirst:
        return newestFirst(a, b);
    case ByRank:
        return lowestRankFirst(a, b);
    case UnreadFirst:
        return unreadFirst(a, b);
    case ByAddress:
    case ByTitle:
        return byText(a, b);
    case ByRating:
        return highestRatingFirst(a, b);
    default:
        return byUnknownOrder(a, b);
    }
}

using Keys = std::vector<SortKey>;

/// A merge sort of what is in order already, so that a few results after many sorted ones cost one pass. In bounds and
/// stable whatever the comparator answers.
class RunSorter final {
public:
    RunSorter(Keys& keys, std::int32_t order, const std::atomic<bool>* cancelled = nullptr)
        : _keys(keys), _order(order), _cancelled(cancelled)
    {
    }

    /// Whether anything moved.
    bool sort()
    {
        for (std::size_t begin = 0; begin < _keys.size();) {
            std::size_t end = begin + 1;
            while (end < _keys.size() && !isAfter(_keys[end - 1], _keys[end]))
                ++end;
            _begins.push_back(begin);
            begin = end;
            // Runs of about one length are merged with each other, so that each result moves few times.
            while (_begins.size() > 1 && lengthBefore(_begins.back()) < 2 * (end - _begins.back()))
                mergeLastTwo(end);
        }
        while (_begins.size() > 1)
            mergeLastTwo(_keys.size());
        return _moved;
    }

private:
    [[nodiscard]] bool isAfter(const SortKey& a, const SortKey& b) const { return compareKeys(a, b, _order) > 0; }
    /// Of the last run but one, which ends there.
    [[nodiscard]] std::size_t lengthBefore(std::size_t end) const { return end - _begins[_begins.size() - 2]; }

    void mergeLastTwo(std::size_t end)
    {
        const std::size_t middle = _begins.back();
        _begins.pop_back();
        std::size_t out = _begins.back();
        if (_cancelled && _cancelled->load(std::memory_order_relaxed))
            return;
        if (!isAfter(_keys[middle - 1], _keys[middle]))
            return;
        while (!isAfter(_keys[out], _keys[middle]))
            ++out;
        _moved = true;
        _left.assign(_keys.begin() + std::ptrdiff_t(out), _keys.begin() + std::ptrdiff_t(middle));
        std::size_t left = 0;
        for (std::size_t right = middle; left < _left.size(); ++out) {
            const bool takeRight = right < end && isAfter(_left[left], _keys[right]);
            _keys[out] = takeRight ? _keys[right++] : _left[left++];
        }
    }

    Keys& _keys;
    const std::int32_t _order;
    const std::atomic<bool>* _cancelled; ///< What is left in no order then is of use to nobody.
    std::vector<std::size_t> _begins;    ///< Of the runs; each ends where the next one begins.
    Keys _left;
    bool _moved = false;
};

Keys keysOf(const ResultList& results, std::int32_t order)
{
    Keys keys;
    keys.reserve(static_cast<std::size_t>(results.size()));
    for (const ResultRecord& record : results) {
        keys.push_back(keyOf(record, order));
        keys.back().index = static_cast<std::uint32_t>(keys.size() - 1);
    }
    return keys;
}

} // namespace

int compareResults(const ResultRecord& a, const ResultRecord& b, std::int32_t order)
{
    return compareKeys(keyOf(a, order), keyOf(b, order), order);
}

bool sortResults(ResultList& results, std::int32_t order)
{
    Keys keys = keysOf(results, order);
    if (!RunSorter(keys, order).sort())
        return false;
    ResultList sorted;
    sorted.reserve(results.size());
    results.detach();
    for (const SortKey& key : keys)
        sorted.append(std::move(results[qsizetype(key.index)]));
    results = std::move(sorted);
    return true;
}

std::vector<std::uint32_t> sortedPlaces(const ResultList& results, std::int32_t order,
                                        const std::atomic<bool>* cancelled)
{
    Keys keys = keysOf(results, order);
    RunSorter(keys, order, cancelled).sort();
    std::vector<std::uint32_t> places;
    if (cancelled && *cancelled)
        return places;
    places.reserve(keys.size());
    for (const SortKey& key : keys)
        places.push_back(key.index);
    return places;
}

} // namespace quarry
