#include "model/RecordData.h"

#include "archive/OpaqueObject.h"

#include <algorithm>

namespace quarry {

const QString& recordKeyName(RecordKey key)
{
    static const std::array<QString, RecordKeyCount> names = {
        QStringLiteral("title Result Key"),     QStringLiteral("URL Result Key"),
        QStringLiteral("Text From Page Key"),   QStringLiteral("kLinkParentQueryUUIDKey"),
        QStringLiteral("link uuid key"),        QStringLiteral("kLinkEngineIDKey"),
        QStringLiteral("Checksum of link Key"), QStringLiteral("User saw this link key"),
        QStringLiteral("link is visible key"),  QStringLiteral("newSincePreviousKey"),
        QStringLiteral("dateoffindKey"),        QStringLiteral("link rank key"),
        QStringLiteral("item rating key"),
    };
    return names[static_cast<std::size_t>(key)];
}

RecordData::RecordData(const RecordData& other)
    : present(other.present), flags(other.flags), kept(other.kept), texts(other.texts), date(other.date),
      rank(other.rank), rating(other.rating), keeper(other.keeper),
      extras(other.extras ? std::make_unique<RecordExtras>(*other.extras) : nullptr)
{
}

void RecordData::assign(RecordKey key)
{
    present = static_cast<Mask>(present | bit(key));
    if (!isKept(key))
        return;
    kept = static_cast<Mask>(kept & ~bit(key));
    extras->entries.removeIf([&](const OpaqueEntry& entry) { return entry.key == recordKeyName(key); });
}

void RecordData::setText(RecordKey key, StoredText text)
{
    assign(key);
    texts[static_cast<std::size_t>(key)] = std::move(text);
}

void RecordData::setFlag(RecordKey key, bool value)
{
    assign(key);
    flags = static_cast<Mask>(value ? flags | bit(key) : flags & ~bit(key));
}

void RecordData::setDate(double secondsSinceReference)
{
    assign(RecordKey::DateOfFind);
    date = secondsSinceReference;
}

void RecordData::setInteger(RecordKey key, std::int64_t value)
{
    assign(key);
    (key == RecordKey::Rank ? rank : rating) = value;
}

/// The same keys with the same values, in any order.
static bool sameEntries(const QList<OpaqueEntry>& a, const QList<OpaqueEntry>& b)
{
    return a.size() == b.size() && std::all_of(a.begin(), a.end(), [&](const OpaqueEntry& entry) {
               return std::any_of(b.begin(), b.end(), [&](const OpaqueEntry& other) { return entry == other; });
           });
}

static bool sameExtras(const RecordExtras* a, const RecordExtras* b)
{
    static const RecordExtras none;
    const RecordExtras& left = a ? *a : none;
    const RecordExtras& right = b ? *b : none;
    if ((left.whole == nullptr) != (right.whole == nullptr))
        return false;
    return (!left.whole || *left.whole == *right.whole) && sameEntries(left.entries, right.entries);
}

bool operator==(const RecordData& a, const RecordData& b)
{
    // Members of absent keys stay at their defaults, so that they may be compared as well.
    return a.present == b.present && a.flags == b.flags && a.date == b.date && a.rank == b.rank &&
           a.rating == b.rating && a.texts == b.texts && sameExtras(a.extras.get(), b.extras.get());
}

} // namespace quarry
