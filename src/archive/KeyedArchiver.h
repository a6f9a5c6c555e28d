#pragma once

#include "archive/KeyedArchive.h"
#include "archive/OpaqueObject.h"
#include "archive/PlistWriter.h"
#include "archive/TextTable.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace quarry {

/// A class as archives describe it: its name and its ancestors', nearest first. Must be a constant.
struct ArchiveClass {
    std::array<const char*, 4> chain{};
};

/// Writes a keyed archive in one pass into a sink. Equal texts, numbers, dates and addresses are stored once, without
/// being asked for. Every value is named by the slot that adding it answers; a slot goes into as many places as one
/// likes. An object may be referred to before it is written (reserve, then place), so cycles are no matter.
///
/// Texts handed in as StoredText must outlive the archiver.
class KeyedArchiver final {
public:
    using Slot = PlistWriter::Object;

    /// `expectedObjects` settles how wide references are and must not be less than what comes: ObjectsPerArchive,
    /// ObjectsPerValue for every value, list, dictionary and object added, and twice the object count of every
    /// archive that opaque values come from. When more comes, finish fails.
    /// `expectedRecords` is a guess at the number of dictionaries with texts of their own and a date; it saves time.
    explicit KeyedArchiver(ByteSink& sink, std::uint64_t expectedObjects, std::size_t expectedRecords = 0);
    KeyedArchiver(const KeyedArchiver&) = delete;
    KeyedArchiver& operator=(const KeyedArchiver&) = delete;

    static constexpr std::uint64_t ObjectsPerArchive = 256;
    static constexpr std::uint64_t ObjectsPerValue = 5;

    // --- Values -------------------------------------------------------------------------------------------------
    [[nodiscard]] Slot null() const { return _null; }
    [[nodiscard]] Slot text(const StoredText& text) { return this->text(text, prepare(text)); }
    [[nodiscard]] Slot text(QStringView text);
    [[nodiscard]] Slot integer(std::int64_t value);
    [[nodiscard]] Slot real(double value);
    [[nodiscard]] Slot boolean(bool value);
    /// Not an archived object: the boolean stands in the place itself.
    [[nodiscard]] Slot nativeBoolean(bool value);
    [[nodiscard]] Slot date(double secondsSinceReference);
    /// An address without a base.
    [[nodiscard]] Slot url(const StoredText& absolute) { return url(absolute, prepare(absolute)); }
    [[nodiscard]] Slot data(const QByteArray& bytes);
    /// Copies a value of another archive with everything below it. What was copied before is referred to.
    [[nodiscard]] Slot opaque(const OpaqueObject& value);
    /// From now on, references of copied values to this object of another archive lead to the slot.
    void alias(const OpaqueObject& reference, Slot slot);

    // The same for values that were announced a moment before, which is faster when there are very many.
    using TextKey = TextTable::Key;
    [[nodiscard]] TextKey prepare(const StoredText& text) const { return _texts.keyOf(text); }
    void prepareDate(double secondsSinceReference) const;
    [[nodiscard]] Slot text(const StoredText& text, TextKey key) { return numbersOf(text, key).text; }
    [[nodiscard]] Slot url(const StoredText& absolute, TextKey key);

    // --- Collections and objects --------------------------------------------------------------------------------
    [[nodiscard]] Slot list(std::span<const Slot> elements);
    [[nodiscard]] Slot dictionary(std::span<const Slot> keys, std::span<const Slot> values);
    /// The same with a list of keys that several dictionaries share.
    [[nodiscard]] Slot keyList(std::span<const Slot> keys) { return _plist.array(keys); }
    [[nodiscard]] Slot dictionaryWithKeyList(Slot keyList, std::span<const Slot> values);

    [[nodiscard]] Slot reserve();
    /// The named entries of an object, in order.
    class Entries final {
    public:
        explicit Entries(KeyedArchiver& archiver) : _archiver(archiver) {}
        void add(QStringView name, Slot value)
        {
            _names.push_back(_archiver.name(name));
            _values.push_back(value);
        }

    private:
        friend class KeyedArchiver;
        KeyedArchiver& _archiver;
        std::vector<Slot> _names;
        std::vector<Slot> _values;
    };
    /// Writes the object of a reserved slot. The class must be the same C++ object for the same class.
    void place(Slot reserved, const ArchiveClass& type, const Entries& entries);
    void placeList(Slot reserved, std::span<const Slot> elements);
    void placeDictionary(Slot reserved, std::span<const Slot> keys, std::span<const Slot> values);

    /// Ends the archive with "root" leading to the slot. False when the sink refused something, or when an opaque
    /// value could not be copied.
    [[nodiscard]] bool finish(Slot root);
    [[nodiscard]] bool failed() const { return _failed || _plist.failed(); }

private:
    struct Source {
        std::shared_ptr<const KeyedArchive> archive;
        std::unordered_map<std::uint32_t, Slot> values;  ///< Objects in place, copied.
        std::unordered_map<std::uint32_t, Slot> objects; ///< Archived objects: to their slots.
    };
    struct Waiting {
        Source* source;
        std::uint32_t object;
        Slot slot;
    };

    [[nodiscard]] Slot name(QStringView text);
    /// The text's slot is filled in.
    [[nodiscard]] TextTable::Numbers& numbersOf(const StoredText& text, TextKey key);
    /// Makes an archived object of what was just written.
    [[nodiscard]] Slot archived(PlistWriter::Object content);
    [[nodiscard]] Slot classSlot(const ArchiveClass& type);
    /// The next object written is the content of the reserved slot.
    void beginReserved(Slot reserved);
    PlistWriter::Object listObject(Slot type, PlistWriter::Object elements);
    PlistWriter::Object dictionaryObject(Slot type, PlistWriter::Object keys, PlistWriter::Object values);
    [[nodiscard]] StoredText kept(QStringView text);
    [[nodiscard]] Source& sourceOf(const std::shared_ptr<const KeyedArchive>& archive);
    [[nodiscard]] Slot copyValue(Source& source, std::uint32_t object, int depth);
    [[nodiscard]] Slot copyReference(Source& source, std::uint32_t uid);
    /// What a container refers to, copied: keys before values.
    [[nodiscard]] std::vector<Slot> copyElements(Source& source, const PlistItem& container, int depth);
    PlistWriter::Object containerObject(PlistItem::Type type, std::span<const Slot> elements);
    PlistWriter::Object copyScalar(const PlistItem& item);
    void copyWaiting();

    PlistWriter _plist;
    std::vector<PlistWriter::Object> _objects;               ///< By UID: the property-list object of the content.
    std::unordered_map<Slot, PlistWriter::Object> _reserved; ///< Slots whose content is still to come.
    TextTable _texts;
    QHash<QString, Slot> _names;
    NumberTable _integers, _reals, _dates;
    std::deque<StoredText> _kept; ///< Texts that nobody else keeps.
    std::unordered_map<const ArchiveClass*, Slot> _classes;
    std::deque<Source> _sources;
    std::vector<Waiting> _waiting;
    // 0 is no slot, so it stands for "not written yet".
    Slot _null = 0;
    std::array<Slot, 2> _booleans{};
    std::array<Slot, 2> _native{};
    Slot _classKey = 0, _objectsKey = 0, _keysKey = 0, _timeKey = 0, _baseKey = 0, _relativeKey = 0;
    bool _failed = false;
};

/// The class chains of the platform's own types.
namespace ArchiveClasses {
extern const ArchiveClass MutableArray, MutableDictionary, Data, Date, Url;
}

} // namespace quarry
