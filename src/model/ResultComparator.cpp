#include "model/ResultComparator.h"

#include <QString>

#include <optional>
#include <vector>

namespace quarry {

namespace {

/// What the comparator asks of one record, read out once: loaded texts are decoded when asked for, and sorting asks
/// many times.
struct SortKey {
    qsizetype index = 0;
    std::optional<Date> date;
    std::optional<qint64> number; ///< The rating where ratings are compared, else the rank.
    std::optional<QString> text;
    bool isRead = false;
    bool hasReadEntry = false;
};

SortKey keyOf(const ResultRecord& record, std::int32_t order)
{
    SortKey key;
    const std::optional<bool> saw = record.userSaw();
    key.hasReadEntry = saw.has_value();
    key.isRead = saw.value_or(false);
    key.date = record.dateOfFind();
    key.number = order == ByRating ? record.rating() : record.rank();
    if (order == ByAddress)
        key.text = record.urlText();
    else if (order == ByTitle)
        key.text = record.title();
    return key;
}

template <typename T>
int compareValues(const std::optional<T>& a, const std::optional<T>& b)
{
    if (!a || !b)
        return 0;
    return *a < *b ? -1 : (*b < *a ? 1 : 0);
}

int newestFirst(const SortKey& a, const SortKey& b)
{
    return compareValues(b.date, a.date);
}

int lowestRankFirst(const SortKey& a, const SortKey& b)
{
    return a.number && b.number ? compareValues(a.number, b.number) : newestFirst(a, b);
}

int highestRatingFirst(const SortKey& a, const SortKey& b)
{
    if (a.number && b.number)
        return compareValues(b.number, a.number);
    if (a.number || b.number)
        return a.number ? -1 : 1;
    return newestFirst(a, b);
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
        return compareValues(a.date, b.date);
    case NewestFirst:
        return newestFirst(a, b);
    case ByRank:
        return lowestRankFirst(a, b);
    case UnreadFirst:
        return unreadFirst(a, b);
    case ByAddress:
    case ByTitle:
        return compareValues(a.text, b.text);
    case ByRating:
        return highestRatingFirst(a, b);
    default:
        return byUnknownOrder(a, b);
    }
}

using Keys = std::vector<SortKey>;

/// Merges from[begin, middle) and from[middle, end) into the same places of `to`, whatever the comparator answers.
void mergeRuns(Keys& from, Keys& to, std::size_t begin, std::size_t middle, std::size_t end, std::int32_t order)
{
    std::size_t left = begin;
    std::size_t right = middle;
    const bool inOrder = middle >= end || compareKeys(from[middle - 1], from[middle], order) <= 0;
    for (std::size_t out = begin; out < end; ++out) {
        const bool takeRight =
            left == middle || (!inOrder && right < end && compareKeys(from[left], from[right], order) > 0);
        to[out] = std::move(from[takeRight ? right++ : left++]);
    }
}

void mergeSort(Keys& keys, std::int32_t order)
{
    Keys other(keys.size());
    for (std::size_t width = 1; width < keys.size(); width *= 2) {
        for (std::size_t begin = 0; begin < keys.size(); begin += 2 * width) {
            const std::size_t middle = std::min(begin + width, keys.size());
            const std::size_t end = std::min(begin + 2 * width, keys.size());
            mergeRuns(keys, other, begin, middle, end, order);
        }
        keys.swap(other);
    }
}

bool isInOrder(const ResultList& results, std::int32_t order)
{
    if (results.size() < 2)
        return true;
    SortKey previous = keyOf(results.front(), order);
    for (qsizetype i = 1; i < results.size(); ++i) {
        SortKey next = keyOf(results.at(i), order);
        if (compareKeys(previous, next, order) > 0)
            return false;
        previous = std::move(next);
    }
    return true;
}

} // namespace

int compareResults(const ResultRecord& a, const ResultRecord& b, std::int32_t order)
{
    return compareKeys(keyOf(a, order), keyOf(b, order), order);
}

bool sortResults(ResultList& results, std::int32_t order)
{
    if (isInOrder(results, order))
        return false;
    Keys keys;
    keys.reserve(static_cast<std::size_t>(results.size()));
    for (qsizetype i = 0; i < results.size(); ++i) {
        keys.push_back(keyOf(results.at(i), order));
        keys.back().index = i;
    }
    mergeSort(keys, order);

    ResultList sorted;
    sorted.reserve(results.size());
    for (const SortKey& key : keys)
        sorted.append(results.at(key.index));
    results = std::move(sorted);
    return true;
}

} // namespace quarry
