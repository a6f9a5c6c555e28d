#include "archive/TextTable.h"

#include <QHash>

#include <bit>
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

std::size_t sizeFor(std::size_t expected)
{
    return std::bit_ceil(std::max(FirstSize, expected / 3 * 4 + 1));
}

} // namespace

TextTable::TextTable(std::size_t expectedTexts) : _slots(std::bit_ceil(std::max(FirstSize, expectedTexts / 3 * 4 + 1)))
{
}

TextTable::Key TextTable::keyOf(const StoredText& text) const
{
    const std::string_view bytes = text.bytes();
    const std::size_t hash = qHashBits(bytes.data(), bytes.size(), processSeed());
    const std::uint32_t isWide = text.encoding() == StoredText::Encoding::Utf16BigEndian ? 1 : 0;
    const Key key{static_cast<std::uint32_t>(hash & 0xfffffffe) | isWide};
    __builtin_prefetch(&_slots[key.tag >> 1 & (_slots.size() - 1)]);
    return key;
}

TextTable::Numbers& TextTable::numbersOf(const StoredText& text, Key key)
{
    if (isFull(_used, _slots.size()))
        grow();
    const std::string_view bytes = text.bytes();
    const auto size = static_cast<std::uint32_t>(bytes.size());
    const std::size_t mask = _slots.size() - 1;
    for (std::size_t place = key.tag >> 1 & mask;; place = (place + 1) & mask) {
        Entry& entry = _slots[place];
        if (entry.numbers.text == 0) {
            entry = {bytes.data(), size, key.tag, {}};
            ++_used;
            return entry.numbers;
        }
        if (entry.tag == key.tag && entry.size == size && std::memcmp(entry.bytes, bytes.data(), size) == 0)
            return entry.numbers;
    }
}

void TextTable::grow()
{
    ZeroedSlots<Entry> larger(_slots.size() * 2);
    const std::size_t mask = larger.size() - 1;
    for (const Entry& entry : _slots) {
        if (entry.numbers.text == 0)
            continue;
        std::size_t place = entry.tag >> 1 & mask;
        while (larger[place].numbers.text != 0)
            place = (place + 1) & mask;
        larger[place] = entry;
    }
    _slots = std::move(larger);
}

NumberTable::NumberTable(std::size_t expectedNumbers) : _slots(sizeFor(expectedNumbers)) {}

std::size_t NumberTable::firstPlaceOf(std::uint64_t key) const
{
    std::uint64_t mixed = key ^ processSeed();
    mixed = (mixed ^ mixed >> 33) * 0xff51afd7ed558ccdU;
    mixed = (mixed ^ mixed >> 33) * 0xc4ceb9fe1a85ec53U;
    return static_cast<std::size_t>(mixed ^ mixed >> 33) & (_slots.size() - 1);
}

std::size_t NumberTable::placeOf(std::uint64_t key) const
{
    const std::size_t mask = _slots.size() - 1;
    std::size_t place = firstPlaceOf(key);
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
    ZeroedSlots<Entry> old(_slots.size() * 2);
    std::swap(old, _slots);
    for (const Entry& entry : old) {
        if (entry.number != 0)
            _slots[placeOf(entry.key)] = entry;
    }
}

} // namespace quarry
