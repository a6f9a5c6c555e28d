#pragma once

#include "archive/KeyedArchive.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace quarry {

/// The classes this program decodes. Everything else is Unknown and carried through as it is.
enum class ArchivedClass : std::uint8_t {
    None, ///< No object: a value in place.
    Unknown,
    Dictionary,
    Array,
    Text,
    Data,
    Date,
    Number,
    Url,
    Query,         ///< "QueryCore"
    BlacklistRule, ///< "BlacklistFilter"
};

/// One value of an archive, its references followed.
struct ArchivedValue {
    std::uint32_t slot = KeyedArchive::NoObject;   ///< What stands in the place: the value itself or a UID.
    std::uint32_t object = KeyedArchive::NoObject; ///< The property-list object of the value.
    PlistItem item;
    ArchivedClass type = ArchivedClass::None;

    [[nodiscard]] bool isNull() const { return item.type == PlistItem::Type::Null || !item.isValid(); }
    /// An object of any class: a dictionary of named entries.
    [[nodiscard]] bool isObject() const { return type != ArchivedClass::None; }
};

/// The slots of a list's elements, or of a dictionary's keys or values.
class SlotList final {
public:
    SlotList() = default;
    SlotList(const BinaryPlist& plist, const PlistItem& container, std::uint64_t first, std::uint64_t count)
        : _plist(&plist), _container(container), _first(first), _count(count)
    {
    }
    explicit SlotList(std::vector<std::uint32_t> slots)
        : _count(slots.size()), _slots(std::make_shared<const std::vector<std::uint32_t>>(std::move(slots)))
    {
    }

    [[nodiscard]] std::uint64_t count() const { return _count; }
    [[nodiscard]] std::uint32_t at(std::uint64_t index) const
    {
        return _plist ? _plist->element(_container, _first + index) : (*_slots)[index];
    }
    /// The references as they lie in the file; empty for the older spelling.
    [[nodiscard]] std::string_view bytes() const
    {
        const std::size_t width = _plist ? _plist->referenceWidth() : 0;
        return {reinterpret_cast<const char*>(_container.bytes) + _first * width, _count * width};
    }

private:
    const BinaryPlist* _plist = nullptr;
    PlistItem _container;
    std::uint64_t _first = 0;
    std::uint64_t _count = 0;
    std::shared_ptr<const std::vector<std::uint32_t>> _slots; ///< In the older spelling.
};

struct SlotPairs {
    SlotList keys;
    SlotList values; ///< As many as keys.
};

struct ArchivedNumber {
    enum class Kind : std::uint8_t { Boolean, Integer, Real };
    Kind kind = Kind::Integer;
    std::int64_t integer = 0; ///< A real cut to its whole part; 0 when that does not fit.
    double real = 0.0;
};

struct ArchivedUrl {
    StoredText relative;
    ArchivedValue base;  ///< Null for an address that stands alone.
    bool isPlain = true; ///< Nothing but these two entries.
};

/// Gives the objects of one archive their meaning, in every spelling a writer of the format may have chosen: in
/// place or referred to, boxed or not, mutable or not. For one load on one thread.
///
/// A value of another type answers none. Damage (a reference that leads nowhere, lists of unequal length) makes the
/// whole reading fail: failed() from then on, and every further answer is none or null.
class ArchiveReader final {
public:
    explicit ArchiveReader(std::shared_ptr<const KeyedArchive> archive);

    [[nodiscard]] const std::shared_ptr<const KeyedArchive>& archive() const { return _archive; }
    [[nodiscard]] const BinaryPlist& plist() const { return _archive->plist(); }

    [[nodiscard]] bool failed() const { return !_reason.isEmpty(); }
    [[nodiscard]] const QString& reason() const { return _reason; }
    void fail(const QString& reason);

    [[nodiscard]] ArchivedValue root() { return value(_archive->rootSlot()); }
    [[nodiscard]] ArchivedValue value(std::uint32_t slot);
    /// A named entry of an object or of a dictionary in place; null when there is none.
    [[nodiscard]] ArchivedValue entry(const ArchivedValue& object, QLatin1String name);

    [[nodiscard]] std::optional<StoredText> text(const ArchivedValue& value);
    [[nodiscard]] std::optional<ArchivedNumber> number(const ArchivedValue& value);
    /// Seconds since 2001.
    [[nodiscard]] std::optional<double> date(const ArchivedValue& value);
    /// A view of the archive's bytes.
    [[nodiscard]] std::optional<std::string_view> data(const ArchivedValue& value);
    [[nodiscard]] std::optional<ArchivedUrl> url(const ArchivedValue& value);
    [[nodiscard]] std::optional<SlotList> list(const ArchivedValue& value);
    /// Of a dictionary object, or a dictionary in place that is no object.
    [[nodiscard]] std::optional<SlotPairs> pairs(const ArchivedValue& value);

    /// Counts elements that are about to be decoded. The number of all of them is bounded by the size of the file,
    /// so that few bytes which are referred to many times cannot fill the memory. False: the reading failed.
    [[nodiscard]] bool spend(std::uint64_t elements);
    /// The same for something long that is looked through or copied each time it is met.
    [[nodiscard]] bool spendBytes(std::uint64_t bytes);

private:
    /// The names that objects of the platform's own classes use.
    enum class Name : std::uint8_t { Class, Keys, Objects, Text, Bytes, Data, Time, Base, Relative };
    static constexpr std::size_t NameCount = 9;
    static constexpr std::uint8_t Absent = 0xff;
    /// Where the names stand in a dictionary; objects of one class look alike.
    struct Shape {
        std::uint64_t count = 0; ///< 0: not used yet.
        std::array<unsigned char, 32> keys{};
        std::array<std::uint8_t, NameCount> place{};
    };

    [[nodiscard]] ArchivedClass classOf(const PlistItem& dictionary);
    [[nodiscard]] ArchivedClass classNamed(std::uint32_t slot);
    [[nodiscard]] std::uint32_t slotOf(const PlistItem& dictionary, Name name);
    [[nodiscard]] const Shape* shapeOf(const PlistItem& dictionary);
    [[nodiscard]] SlotList numbered(const PlistItem& dictionary, const QString& prefix);
    [[nodiscard]] std::optional<SlotList> elements(const ArchivedValue& object, Name name, const char* oldPrefix);
    [[nodiscard]] std::optional<ArchivedNumber> boxedNumber(const ArchivedValue& value);

    struct KnownClass {
        std::uint32_t slot = KeyedArchive::NoObject;
        ArchivedClass type = ArchivedClass::Unknown;
    };
    static constexpr std::size_t ShapesTried = 4;

    std::shared_ptr<const KeyedArchive> _archive;
    QString _reason;
    std::array<Shape, 64> _shapes;
    std::array<KnownClass, 16> _classes; ///< The last ones met; an archive has a handful.
    std::size_t _nextClass = 0;
    std::size_t _nextShape = 0;
    std::uint64_t _budget;
};

} // namespace quarry
