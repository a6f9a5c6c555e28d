#pragma once

#include "archive/ArchiveReader.h"
#include "archive/KeyedArchiver.h"
#include "model/OpaqueValues.h"
#include "model/RecordData.h"
#include "model/ResultRecord.h"

#include <array>
#include <cstdint>
#include <vector>

namespace quarry {

/// Reads the records of one archive. Their texts stay in its bytes.
class RecordReader final {
public:
    RecordReader(ArchiveReader& reader, OpaqueValues& opaque);
    /// The list of records in a slot; none when there is no list.
    [[nodiscard]] std::optional<ResultList> readList(const ArchivedValue& value);

private:
    static constexpr std::uint8_t UnknownKey = 0xff;
    /// Which key stands in which place. Records of one writer look alike, so the last few are kept.
    struct Layout {
        std::string_view references; ///< The key slots as they lie in the file.
        std::vector<std::uint8_t> keys;
    };

    [[nodiscard]] ResultRecord read(std::uint32_t slot);
    [[nodiscard]] const std::vector<std::uint8_t>& layoutOf(const SlotList& keys);
    [[nodiscard]] std::uint8_t keyIn(std::uint32_t slot);
    [[nodiscard]] std::uint8_t keyNamed(const ArchivedValue& name);
    void readValue(RecordData& data, RecordKey key, std::uint32_t slot);
    /// Whether the value is of the type the key has; if not, the original is carried along.
    [[nodiscard]] bool readText(RecordData& data, RecordKey key, const ArchivedValue& value);
    [[nodiscard]] bool readUrl(RecordData& data, const ArchivedValue& value);
    [[nodiscard]] bool readFlag(RecordData& data, RecordKey key, const ArchivedValue& value);
    [[nodiscard]] bool readDate(RecordData& data, const ArchivedValue& value);
    [[nodiscard]] bool readInteger(RecordData& data, RecordKey key, const ArchivedValue& value);
    void keep(RecordData& data, RecordKey key, std::uint32_t slot);
    void keepUnknown(RecordData& data, std::uint32_t keySlot, std::uint32_t slot);

    ArchiveReader& _reader;
    OpaqueValues& _opaque;
    std::shared_ptr<const void> _keeper;
    struct KnownKey {
        std::uint32_t object = KeyedArchive::NoObject;
        std::uint8_t key = UnknownKey;
    };
    std::array<KnownKey, 64> _knownKeys; ///< By the name's object, for writers that spell every list of keys anew.
    std::array<Layout, 8> _layouts;
    std::size_t _lastLayout = 0;
    std::size_t _nextLayout = 0;
};

/// Writes records into one archive.
class RecordWriter final {
public:
    explicit RecordWriter(KeyedArchiver& archiver) : _archiver(archiver) {}
    [[nodiscard]] KeyedArchiver::Slot writeList(const ResultList& records);

    /// No record adds more values than this, unknown entries apart.
    static constexpr std::uint64_t ValuesPerRecord = RecordKeyCount + 2;

private:
    using Slot = KeyedArchiver::Slot;
    using TextKeys = std::array<KeyedArchiver::TextKey, RecordTextCount>;
    /// Announces the record's values: it is written next but one.
    [[nodiscard]] TextKeys prepare(const RecordData& data) const;
    [[nodiscard]] Slot write(const RecordData& data, const TextKeys& texts);
    [[nodiscard]] Slot writeWithExtras(const RecordData& data, const TextKeys& texts);
    [[nodiscard]] Slot writeValue(const RecordData& data, RecordKey key, const TextKeys& texts);
    [[nodiscard]] Slot keyList(RecordData::Mask keys);
    [[nodiscard]] Slot keySlot(const OpaqueEntry& entry);

    KeyedArchiver& _archiver;
    std::vector<Slot> _keyLists = std::vector<Slot>(std::size_t(1) << RecordKeyCount); ///< By the keys that are there.
};

} // namespace quarry
