#include "blacklist/SubstringIndex.h"

#include <algorithm>
#include <cstring>

namespace quarry {

SubstringIndex::SubstringIndex(std::vector<std::string> texts) : _texts(std::move(texts))
{
    std::size_t count = 0;
    for (const std::string& text : _texts)
        count += text.size() < GramSize ? 0 : text.size() - GramSize + 1;
    while (_shift > 8 && (std::size_t{1} << (32 - _shift)) < count * 2)
        --_shift;

    const auto forEachPlace = [this](auto&& visit) {
        for (std::uint32_t t = 0; t < _texts.size(); ++t) {
            for (std::uint32_t at = 0; at + GramSize <= _texts[t].size(); ++at)
                visit(bucketOf(_texts[t].data() + at), Place{t, at});
        }
    };
    _bucketBegin.assign((std::size_t{1} << (32 - _shift)) + 1, 0);
    forEachPlace([this](std::size_t bucket, Place) { ++_bucketBegin[bucket + 1]; });
    for (std::size_t bucket = 1; bucket < _bucketBegin.size(); ++bucket)
        _bucketBegin[bucket] += _bucketBegin[bucket - 1];
    _places.resize(count);
    std::vector<std::uint32_t> next(_bucketBegin.begin(), _bucketBegin.end() - 1);
    forEachPlace([&](std::size_t bucket, Place place) { _places[next[bucket]++] = place; });
}

std::size_t SubstringIndex::bucketOf(const char* gram) const
{
    std::uint32_t bytes = 0;
    static_assert(sizeof(bytes) == GramSize);
    std::memcpy(&bytes, gram, GramSize);
    return (bytes * 2654435769U) >> _shift;
}

std::uint32_t SubstringIndex::firstHolding(std::string_view part) const
{
    if (part.size() < GramSize)
        return firstHoldingShort(part);
    // The rarest four bytes of the part say where it can be; mostly some of them are nowhere at all.
    std::size_t rarest = 0;
    std::size_t rarestCount = _places.size() + 1;
    for (std::size_t at = 0; at + GramSize <= part.size(); ++at) {
        const std::size_t bucket = bucketOf(part.data() + at);
        const std::size_t count = _bucketBegin[bucket + 1] - _bucketBegin[bucket];
        if (count == 0)
            return None;
        if (count < rarestCount) {
            rarest = at;
            rarestCount = count;
        }
    }
    const std::size_t bucket = bucketOf(part.data() + rarest);
    for (std::size_t i = _bucketBegin[bucket]; i < _bucketBegin[bucket + 1]; ++i) {
        const Place place = _places[i]; // In the order of the texts.
        if (place.offset >= rarest && _texts[place.text].compare(place.offset - rarest, part.size(), part) == 0)
            return place.text;
    }
    return None;
}

std::uint32_t SubstringIndex::firstHoldingShort(std::string_view part) const
{
    for (std::uint32_t t = 0; t < _texts.size(); ++t) {
        if (_texts[t].find(part) != std::string::npos)
            return t;
    }
    return None;
}

} // namespace quarry
