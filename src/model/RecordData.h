#pragma once

#include "archive/OpaqueObject.h"
#include "archive/StoredText.h"

#include <QList>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

namespace quarry {

/// The keys of a record. The first seven hold texts and index RecordData::texts.
enum class RecordKey : std::uint8_t {
    Title,
    Url,
    TextFromPage,
    ParentQueryUuid,
    LinkUuid,
    EngineId,
    Checksum,
    UserSaw,
    Visible,
    NewSincePrevious,
    DateOfFind,
    Rank,
    Rating,
};
inline constexpr std::size_t RecordTextCount = 7;
inline constexpr std::size_t RecordKeyCount = 13;

/// The name a key has in the database file.
[[nodiscard]] const QString& recordKeyName(RecordKey key);

/// What few records have: entries that are carried through as they were read.
struct RecordExtras {
    /// Keys this program does not know, and known keys whose value is not of the expected type.
    QList<OpaqueEntry> entries;
    /// The whole element when it is no dictionary of a known class. The record then reads as empty.
    std::shared_ptr<const OpaqueObject> whole;
};

/// The block of memory behind a ResultRecord; shared, and changed only while it has a single owner.
///
/// It exists a million times, so its members are as small as they can be without tricks: texts are views into the
/// loaded bytes (kept alive by `keeper`) or share a block of their own.
struct RecordData {
    using Mask = std::uint16_t;
    [[nodiscard]] static constexpr Mask bit(RecordKey key)
    {
        return static_cast<Mask>(1U << static_cast<unsigned>(key));
    }

    RecordData() = default;
    RecordData(const RecordData& other);
    RecordData& operator=(const RecordData&) = delete;
    ~RecordData() = default;

    [[nodiscard]] bool has(RecordKey key) const { return (present & bit(key)) != 0; }
    [[nodiscard]] const StoredText& text(RecordKey key) const { return texts[static_cast<std::size_t>(key)]; }
    [[nodiscard]] bool flag(RecordKey key) const { return (flags & bit(key)) != 0; }
    [[nodiscard]] bool isKept(RecordKey key) const { return (kept & bit(key)) != 0; }

    void setText(RecordKey key, StoredText text);
    void setFlag(RecordKey key, bool value);
    void setDate(double secondsSinceReference);
    void setInteger(RecordKey key, std::int64_t value);

    mutable std::atomic<std::uint32_t> shares{0};
    Mask present = 0; ///< The keys that have a value, in this program's own types.
    Mask flags = 0;   ///< The values of the boolean keys.
    Mask kept = 0;    ///< Known keys that are written from `extras`, since their value is of another type.
    std::array<StoredText, RecordTextCount> texts;
    double date = 0.0;
    std::int64_t rank = 0;
    std::int64_t rating = 0;
    std::shared_ptr<const void> keeper; ///< Of the bytes that the texts view.
    std::unique_ptr<RecordExtras> extras;

private:
    /// The key gets a value of this program's own.
    void assign(RecordKey key);
};

[[nodiscard]] bool operator==(const RecordData& a, const RecordData& b);

} // namespace quarry
