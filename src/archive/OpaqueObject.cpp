#include "archive/OpaqueObject.h"

#include "archive/KeyedArchive.h"

#include <set>
#include <utility>

namespace quarry {

namespace {

using Type = PlistItem::Type;

/// Compares values of two archives down to the leaves.
class Comparison final {
public:
    Comparison(const KeyedArchive& left, const KeyedArchive& right) : _left(left), _right(right) {}

    bool same(std::uint32_t leftSlot, std::uint32_t rightSlot, int depth)
    {
        PlistItem left;
        PlistItem right;
        const std::uint32_t leftObject = _left.resolve(leftSlot, left);
        const std::uint32_t rightObject = _right.resolve(rightSlot, right);
        if (depth > MaximumDepth || _steps++ > MaximumSteps)
            return false;
        if (left.isText() && right.isText())
            return left.text() == right.text();
        if (left.type != right.type)
            return false;
        if (!left.isContainer())
            return sameScalar(left, right);
        if (left.count != right.count)
            return false;
        // Met again while it is being compared, or after: what is different shows elsewhere.
        if (!_seen.emplace(leftObject, rightObject).second)
            return true;
        return left.type == Type::Dictionary ? sameEntries(left, right, depth) : sameElements(left, right, depth);
    }

private:
    static constexpr int MaximumDepth = 500;
    static constexpr int MaximumSteps = 1000000;

    static bool sameScalar(const PlistItem& left, const PlistItem& right)
    {
        switch (left.type) {
        case Type::Integer:
            if (left.integer() && right.integer())
                return *left.integer() == *right.integer();
            break;
        case Type::Real:
        case Type::Date:
            return left.real() == right.real();
        case Type::Null:
        case Type::True:
        case Type::False:
            return true;
        case Type::Invalid:
            return false;
        default:
            break;
        }
        return bytesOf(left) == bytesOf(right);
    }

    static std::string_view bytesOf(const PlistItem& item)
    {
        return {reinterpret_cast<const char*>(item.bytes), static_cast<std::size_t>(item.count)};
    }

    bool sameElements(const PlistItem& left, const PlistItem& right, int depth)
    {
        for (std::uint64_t i = 0; i < left.count; ++i) {
            if (!same(_left.plist().element(left, i), _right.plist().element(right, i), depth + 1))
                return false;
        }
        return true;
    }

    /// The same entries in any order; mostly they stand in the same one.
    bool sameEntries(const PlistItem& left, const PlistItem& right, int depth)
    {
        for (std::uint64_t i = 0; i < left.count; ++i) {
            const std::uint32_t value = valueFor(_left.plist().item(_left.plist().key(left, i)), right, i);
            if (value == KeyedArchive::NoObject || !same(_left.plist().value(left, i), value, depth + 1))
                return false;
        }
        return true;
    }

    std::uint32_t valueFor(const PlistItem& key, const PlistItem& dictionary, std::uint64_t guess)
    {
        const BinaryPlist& plist = _right.plist();
        for (std::uint64_t i = 0; key.isText() && i < dictionary.count && _steps <= MaximumSteps; ++i) {
            const std::uint64_t index = (guess + i) % dictionary.count;
            const PlistItem candidate = plist.item(plist.key(dictionary, index));
            if (candidate.isText() && candidate.text() == key.text())
                return plist.value(dictionary, index);
            ++_steps;
        }
        return KeyedArchive::NoObject;
    }

    const KeyedArchive& _left;
    const KeyedArchive& _right;
    std::set<std::pair<std::uint32_t, std::uint32_t>> _seen;
    int _steps = 0;
};

bool same(const std::shared_ptr<const OpaqueObject>& a, const std::shared_ptr<const OpaqueObject>& b)
{
    return a == b || (a && b && *a == *b);
}

} // namespace

bool operator==(const OpaqueObject& a, const OpaqueObject& b)
{
    if (a._archive == b._archive && a._plistIndex == b._plistIndex)
        return true;
    return Comparison(*a._archive, *b._archive).same(a._plistIndex, b._plistIndex, 0);
}

bool operator==(const OpaqueEntry& a, const OpaqueEntry& b)
{
    return a.key == b.key && same(a.keyObject, b.keyObject) && same(a.value, b.value);
}

} // namespace quarry
