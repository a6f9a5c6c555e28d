#pragma once

#include "archive/BinaryPlist.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

namespace quarry {

/// A keyed archive, opened: a table of archived objects ("$objects") and the value they all hang from ("$top").
/// Everything stays in the bytes; ArchiveReader gives them meaning. Immutable, so any thread may read it.
///
/// Two kinds of number occur: a *slot* is the property-list object that stands for a value in some place, either the
/// value itself or a UID; the *object* is the property-list object of the value after the UID was followed.
class KeyedArchive final {
public:
    static constexpr std::uint32_t NoObject = BinaryPlist::NoObject;

    struct Opened {
        std::shared_ptr<const KeyedArchive> archive; ///< None when it could not be opened.
        QString reason;                              ///< One line for a person, when it could not.
    };
    /// Takes the binary and the XML form.
    [[nodiscard]] static Opened open(const QByteArray& bytes);

    [[nodiscard]] const BinaryPlist& plist() const { return _plist; }
    /// The slot of the value under "root", or of the only value there is.
    [[nodiscard]] std::uint32_t rootSlot() const { return _rootSlot; }
    /// The number of archived objects; number 0 stands for "no value".
    [[nodiscard]] std::uint64_t uidCount() const { return _objects.count; }
    /// The property-list object a UID stands for, or NoObject.
    [[nodiscard]] std::uint32_t objectOf(std::uint32_t uid) const
    {
        return uid < _objects.count ? _plist.element(_objects, uid) : NoObject;
    }
    /// Follows a slot. The item is null for the UID 0; answers NoObject, and an invalid item, for a broken slot.
    std::uint32_t resolve(std::uint32_t slot, PlistItem& item) const
    {
        bool isUid = false;
        const std::uint32_t uid = _plist.uidIn(slot, isUid);
        const std::uint32_t object = isUid ? objectOf(uid) : slot;
        item = _plist.item(object);
        // An archived object that is itself a reference leads nowhere.
        if (item.type == PlistItem::Type::Uid || !item.isValid()) {
            item = {};
            return NoObject;
        }
        if (isUid && uid == 0)
            item = {PlistItem::Type::Null, 0, item.bytes, 0};
        return object;
    }

private:
    explicit KeyedArchive(BinaryPlist plist) : _plist(std::move(plist)) {}
    /// Finds the tables. Answers why not, or nothing.
    QString locate();

    BinaryPlist _plist;
    PlistItem _objects;
    std::uint32_t _rootSlot = NoObject;
};

} // namespace quarry
