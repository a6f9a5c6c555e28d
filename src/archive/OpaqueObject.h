#pragma once

#include <QString>

#include <cstdint>
#include <memory>

namespace quarry {

class KeyedArchive;

/// A value of a loaded archive that this program does not interpret: a place in the archive's bytes, which it keeps
/// alive. When it is written to another archive, everything below it is copied unchanged.
class OpaqueObject final {
public:
    OpaqueObject(std::shared_ptr<const KeyedArchive> archive, std::uint32_t plistIndex)
        : _archive(std::move(archive)), _plistIndex(plistIndex)
    {
    }
    [[nodiscard]] const std::shared_ptr<const KeyedArchive>& archive() const { return _archive; }
    /// The number of the property-list object: a reference to an archived object, or a value in place.
    [[nodiscard]] std::uint32_t plistIndex() const { return _plistIndex; }

    /// Equal content, compared down to the leaves; gives up as unequal where that would take too long.
    friend bool operator==(const OpaqueObject& a, const OpaqueObject& b);

private:
    std::shared_ptr<const KeyedArchive> _archive;
    std::uint32_t _plistIndex;
};

/// An entry that is carried through: its key and its value.
struct OpaqueEntry {
    QString key;
    std::shared_ptr<const OpaqueObject> value;
    /// The key itself, where it is no text.
    std::shared_ptr<const OpaqueObject> keyObject;

    friend bool operator==(const OpaqueEntry& a, const OpaqueEntry& b);
};

} // namespace quarry
