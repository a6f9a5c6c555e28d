#pragma once

#include "archive/BinaryPlist.h"

#include <QByteArray>
#include <QtEndian>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace quarry::test {

/// How a binary property list is spelled; what it holds stays the same.
struct Spelling {
    int offsetWidth = 2;
    int referenceWidth = 2;
    int integerWidth = 1; ///< At least.
    int uidWidth = 1;     ///< At least.
    bool wideTexts = false;
    bool longCounts = false; ///< Counts in an integer of their own where they could stand in the marker.
    unsigned order = 0;      ///< 0: as they are; else the objects' order is shuffled with this seed.
};

/// The same property list, spelled otherwise. Written independently of the product's own writer.
class Respelled final {
public:
    static QByteArray of(const QByteArray& bytes, const Spelling& spelling)
    {
        QString reason;
        const auto plist = BinaryPlist::open(bytes, reason);
        return plist ? Respelled(*plist, spelling).write() : QByteArray();
    }

private:
    Respelled(const BinaryPlist& plist, const Spelling& spelling) : _plist(plist), _spelling(spelling) {}

    QByteArray write()
    {
        std::vector<std::uint32_t> order(_plist.objectCount());
        std::iota(order.begin(), order.end(), 0U);
        if (_spelling.order != 0)
            std::shuffle(order.begin(), order.end(), std::mt19937(_spelling.order));
        _newNumber.resize(order.size());
        for (std::size_t i = 0; i < order.size(); ++i)
            _newNumber[order[i]] = i;
        _out = "bplist00";
        std::vector<std::uint64_t> offsets;
        for (const std::uint32_t object : order) {
            offsets.push_back(static_cast<std::uint64_t>(_out.size()));
            writeObject(_plist.item(object));
        }
        const auto table = static_cast<std::uint64_t>(_out.size());
        for (const std::uint64_t offset : offsets)
            number(offset, _spelling.offsetWidth);
        _out.append(6, '\0');
        number(static_cast<std::uint64_t>(_spelling.offsetWidth), 1);
        number(static_cast<std::uint64_t>(_spelling.referenceWidth), 1);
        number(offsets.size(), 8);
        number(_newNumber[_plist.topObject()], 8);
        number(table, 8);
        return _out;
    }

    void number(std::uint64_t value, int width)
    {
        for (int i = width - 1; i >= 0; --i)
            _out.append(i >= 8 ? '\0' : static_cast<char>(value >> (8 * i)));
    }

    static int widthOf(std::uint64_t value) { return value < 0x100 ? 1 : value < 0x10000 ? 2 : value >> 32 ? 8 : 4; }

    void marker(int high, std::uint64_t count)
    {
        if (count < 15 && !_spelling.longCounts)
            return number(static_cast<std::uint64_t>(high) | count, 1);
        number(static_cast<std::uint64_t>(high) | 15, 1);
        integer(count);
    }

    void integer(std::uint64_t value)
    {
        const int width = std::max(widthOf(value), std::min(_spelling.integerWidth, 8));
        number(0x10U | static_cast<unsigned>(std::countr_zero(static_cast<unsigned>(width))), 1);
        number(value, width);
    }

    void writeObject(const PlistItem& item)
    {
        using Type = PlistItem::Type;
        const QByteArray raw(reinterpret_cast<const char*>(item.bytes),
                             static_cast<qsizetype>(item.byteCount(_plist.referenceWidth())));
        switch (item.type) {
        case Type::Null:
            return number(0, 1);
        case Type::False:
        case Type::True:
            return number(item.type == Type::True ? 9 : 8, 1);
        case Type::Integer:
            if (*item.integer() >= 0 && _spelling.integerWidth < 16)
                return integer(static_cast<std::uint64_t>(*item.integer()));
            number(0x14, 1);
            _out.append(8, *item.integer() < 0 ? '\xff' : '\0');
            return number(static_cast<std::uint64_t>(*item.integer()), 8);
        case Type::Real:
        case Type::Date:
            number(item.type == Type::Real ? 0x23 : 0x33, 1);
            return number(std::bit_cast<std::uint64_t>(item.real()), 8);
        case Type::Data:
            marker(0x40, item.count);
            _out += raw;
            return;
        case Type::Ascii:
        case Type::Utf16:
            return writeText(item);
        case Type::Uid: {
            const std::uint64_t uid = BinaryPlist::uid(item);
            const int width = std::max(widthOf(uid), _spelling.uidWidth);
            number(0x80U | static_cast<unsigned>(width - 1), 1);
            return number(uid, width);
        }
        default: {
            marker(item.type == Type::Dictionary ? 0xd0 : item.type == Type::Set ? 0xc0 : 0xa0, item.count);
            const std::uint64_t references = item.type == Type::Dictionary ? item.count * 2 : item.count;
            for (std::uint64_t i = 0; i < references; ++i)
                number(_newNumber[_plist.element(item, i)], _spelling.referenceWidth);
        }
        }
    }

    void writeText(const PlistItem& item)
    {
        const bool isWide = item.type == PlistItem::Type::Utf16 || _spelling.wideTexts;
        marker(isWide ? 0x60 : 0x50, item.count);
        for (std::uint32_t i = 0; i < item.count; ++i)
            number(item.text().unitAt(i), isWide ? 2 : 1);
    }

    const BinaryPlist& _plist;
    Spelling _spelling;
    std::vector<std::size_t> _newNumber;
    QByteArray _out;
};

} // namespace quarry::test
