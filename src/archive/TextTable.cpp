#include "archive/TextTable.h"

#include <QHash>

#include <cstring>
#include <random>

namespace quarry {

namespace {

constexpr std::size_t FirstSize = 1024;

std::size_t processSeed()
{
    static const std::size_t seed = [] {
        std::random_device device;
        return (std::size_t(device()) << 32) ^ device();
    }();
    return seed;
}

bool isFull(std::size_t used, std::size_t size)
{
    return used * 4 >= size * 3;
}

} // namespace

TextTable::TextTable() : _slots(FirstSize, Entry{nullptr, 0, 0, 0}) {}

std::uint32_t& TextTable::numberOf(const StoredText& text)
{
    if (isFull(_used, _slots.size()))
        grow();
    const std::string_view bytes = text.bytes();
    const std::size_t hash = qHashBits(bytes.data(), bytes.size(), processSeed());
    const auto size = static_cast<std::uint32_t>(bytes.size());
    const std::uint32_t isWide = text.encoding() == StoredText::Encoding::Utf16BigEndian ? 1 : 0;
    const auto tag = static_cast<std::uint32_t>(hash & 0xfffffffe) | isWide;
    const std::size_t mask = _slots.size() - 1;
    for (std::size_t place = tag >> 1 & mask;; place = (place + 1) & mask) {
        Entry& entry = _slots[place];
        if (entry.number == 0) {
            entry = {bytes.data(), size, tag, 0};
            ++_used;
            return entry.number;
        }
        if (entry.tag == tag && entry.size == size && std::memcmp(entry.bytes, bytes.data(), size) == 0)
            return entry.number;
    }
}

void TextTable::grow()
{
    std::vector<Entry> old(_slots.size() * 2, Entry{nullptr, 0, 0, 0});
    old.swap(_slots);
    const std::size_t mask = _slots.size() - 1;
    for (const Entry& entry : old) {
        if (entry.number == 0)
            continue;
        std::size_t place = entry.tag >> 1 & mask;
        while (_slots[place].number != 0)
            place = (place + 1) & mask;
        _slots[place] = entry;
    }
}

NumberTable::NumberTable() : _slots(FirstSize, Entry{0, 0}) {}

std::size_t NumberTable::placeOf(std::uint64_t key) const
{
    const std::size_t mask = _slots.size() - 1;
    std::size_t place = qHash(quint64(key) * 0x9e3779b97f4a7c15U, processSeed()) & mask;
    while (_slots[place].number != 0 && _slots[place].key != key)
        place = (place + 1) & mask;
    return place;
}

std::uint32_t& NumberTable::numberOf(std::uint64_t key)
{
    if (isFull(_used, _slots.size()))
        grow();
    Entry& entry = _slots[placeOf(key)];
    if (entry.number == 0) {
        entry.key = key;
        ++_used;
    }
    return entry.number;
}

void NumberTable::grow()
{
    std::vector<Entry> old(_slots.size() * 2, Entry{0, 0});
    old.swap(_slots);
    for (const Entry& entry : old) {
        if (entry.number != 0)
            _slots[placeOf(entry.key)] = entry;
    }
}

} // namespace quarry
