#include "engines/KnownLinks.h"

#include <algorithm>
#include <bit>

namespace quarry {

namespace {

std::uint32_t tagOf(std::size_t hash)
{
    return static_cast<std::uint32_t>(hash >> 32);
}

} // namespace

KnownLinks::KnownLinks(const ResultList& records) : _records(records)
{
    makeRoom(static_cast<std::size_t>(records.size()));
    for (const ResultRecord& record : records) {
        if (const LinkAddress link(record); link.exists())
            add(link);
    }
}

/// The slot of the link, or the free one where it would be. There is one.
std::size_t KnownLinks::slotOf(const LinkAddress& link) const
{
    const std::size_t mask = _slots.size() - 1;
    for (std::size_t at = link.hash() & mask;; at = (at + 1) & mask) {
        const Slot& slot = _slots[at];
        if (!slot.isUsed())
            return at;
        if (slot.tag != tagOf(link.hash()))
            continue;
        const Texts& texts = _texts[slot.number - 1];
        if (texts.host == link._host && texts.path == link._path)
            return at;
    }
}

void KnownLinks::add(const LinkAddress& link)
{
    if (_slots.size() < 2 * (_texts.size() + 1))
        makeRoom(2 * (_texts.size() + 1));
    Slot& slot = _slots[slotOf(link)];
    if (slot.isUsed())
        return;
    _texts.push_back({link._host, link._path});
    _hashes.push_back(link.hash());
    if (!link._own.isEmpty())
        _own.append(link._own);
    slot = {tagOf(link.hash()), static_cast<std::uint32_t>(_texts.size())};
}

/// For so many links.
void KnownLinks::makeRoom(std::size_t count)
{
    constexpr std::size_t Fewest = 16;
    _texts.reserve(count);
    _hashes.reserve(count);
    _slots.assign(std::bit_ceil(std::max(2 * count, Fewest)), Slot());
    const std::size_t mask = _slots.size() - 1;
    for (std::size_t i = 0; i < _hashes.size(); ++i) {
        std::size_t at = _hashes[i] & mask;
        while (_slots[at].isUsed())
            at = (at + 1) & mask;
        _slots[at] = {tagOf(_hashes[i]), static_cast<std::uint32_t>(i + 1)};
    }
}

} // namespace quarry
