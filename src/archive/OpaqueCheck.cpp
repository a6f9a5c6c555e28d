#include "archive/OpaqueCheck.h"

namespace quarry {

bool OpaqueCheck::isSound(std::uint32_t slot)
{
    if (_states.empty())
        _states.resize(_archive.plist().objectCount(), State::Unseen);
    if (!walk(slot, 0))
        return false;
    while (!_waiting.empty()) {
        const std::uint32_t object = _waiting.back();
        _waiting.pop_back();
        if (!walk(object, 0))
            return false;
    }
    return true;
}

bool OpaqueCheck::follow(const PlistItem& uid)
{
    const std::uint32_t object = _archive.objectOf(BinaryPlist::uid(uid));
    if (object >= _states.size() || _archive.plist().item(object).type == PlistItem::Type::Uid)
        return false;
    if (_states[object] == State::Unseen)
        _waiting.push_back(object);
    return true;
}

bool OpaqueCheck::walk(std::uint32_t object, int depth)
{
    if (object >= _states.size() || depth > MaximumDepth || _states[object] == State::Open)
        return false;
    if (_states[object] == State::Done)
        return true;
    const BinaryPlist& plist = _archive.plist();
    const PlistItem item = plist.item(object);
    if (!item.isValid())
        return false;
    _states[object] = State::Open;
    bool sound = item.type != PlistItem::Type::Uid || follow(item);
    const std::uint64_t references = !item.isContainer()                        ? 0
                                     : item.type == PlistItem::Type::Dictionary ? item.count * 2
                                                                                : item.count;
    for (std::uint64_t i = 0; sound && i < references; ++i)
        sound = walk(plist.element(item, i), depth + 1);
    _states[object] = State::Done;
    return sound;
}

} // namespace quarry
