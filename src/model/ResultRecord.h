#pragma once

#include "platform/Date.h"
#include "text/Url.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>
#include <utility>

namespace quarry {

struct RecordData;

/// One search result: an immutable, implicitly shared value with one optional, typed member a key, and the keys
/// it does not know kept beside them, so that a file written by a newer program loses nothing here.
///
/// Every change is made by copy: record = record.withRating(4). Texts of a record that was read from a database
/// stay in the loaded bytes and are decoded when asked for; the record keeps those bytes alive. The unit that
/// exists a million times: a pointer, and one block of memory behind it. Safe to read from several threads.
class ResultRecord final {
public:
    /// A record without any key.
    ResultRecord();
    ResultRecord(const ResultRecord& other) : _data(other._data) { retain(); }
    ResultRecord(ResultRecord&& other) noexcept : _data(std::exchange(other._data, nullptr)) {}
    ResultRecord& operator=(const ResultRecord& other)
    {
        ResultRecord copy(other);
        std::swap(_data, copy._data);
        return *this;
    }
    ResultRecord& operator=(ResultRecord&& other) noexcept
    {
        std::swap(_data, other._data);
        return *this;
    }
    ~ResultRecord();

    // A missing key reads as none.
    [[nodiscard]] std::optional<QString> title() const;           ///< "title Result Key"
    [[nodiscard]] std::optional<Url> url() const;                 ///< "URL Result Key"
    [[nodiscard]] std::optional<QString> urlText() const;         ///< Its absolute string, not split.
    [[nodiscard]] std::optional<QString> textFromPage() const;    ///< "Text From Page Key"
    [[nodiscard]] std::optional<bool> userSaw() const;            ///< "User saw this link key"
    [[nodiscard]] std::optional<Date> dateOfFind() const;         ///< "dateoffindKey"
    [[nodiscard]] std::optional<qint64> rank() const;             ///< "link rank key"
    [[nodiscard]] std::optional<qint64> rating() const;           ///< "item rating key"
    [[nodiscard]] std::optional<bool> visible() const;            ///< "link is visible key"
    [[nodiscard]] std::optional<QString> parentQueryUuid() const; ///< "kLinkParentQueryUUIDKey"
    [[nodiscard]] std::optional<QString> linkUuid() const;        ///< "link uuid key"
    [[nodiscard]] std::optional<QString> engineId() const;        ///< "kLinkEngineIDKey"
    [[nodiscard]] std::optional<QString> checksum() const;        ///< "Checksum of link Key"
    [[nodiscard]] std::optional<bool> newSincePrevious() const;   ///< "newSincePreviousKey"

    /// userSaw() with absent read as false.
    [[nodiscard]] bool isRead() const { return userSaw().value_or(false); }

    // The changed copy. On a temporary that nobody shares the change is made in place.
    [[nodiscard]] ResultRecord withTitle(const QString& text) const&;
    [[nodiscard]] ResultRecord withTitle(const QString& text) &&;
    [[nodiscard]] ResultRecord withUrl(const Url& url) const&;
    [[nodiscard]] ResultRecord withUrl(const Url& url) &&;
    [[nodiscard]] ResultRecord withTextFromPage(const QString& text) const&;
    [[nodiscard]] ResultRecord withTextFromPage(const QString& text) &&;
    [[nodiscard]] ResultRecord withUserSaw(bool saw) const&;
    [[nodiscard]] ResultRecord withUserSaw(bool saw) &&;
    [[nodiscard]] ResultRecord withDateOfFind(Date date) const&;
    [[nodiscard]] ResultRecord withDateOfFind(Date date) &&;
    [[nodiscard]] ResultRecord withRank(qint64 rank) const&;
    [[nodiscard]] ResultRecord withRank(qint64 rank) &&;
    [[nodiscard]] ResultRecord withRating(qint64 rating) const&;
    [[nodiscard]] ResultRecord withRating(qint64 rating) &&;
    [[nodiscard]] ResultRecord withVisible(bool visible) const&;
    [[nodiscard]] ResultRecord withVisible(bool visible) &&;
    [[nodiscard]] ResultRecord withParentQueryUuid(const QString& uuid) const&;
    [[nodiscard]] ResultRecord withParentQueryUuid(const QString& uuid) &&;
    [[nodiscard]] ResultRecord withLinkUuid(const QString& uuid) const&;
    [[nodiscard]] ResultRecord withLinkUuid(const QString& uuid) &&;
    [[nodiscard]] ResultRecord withEngineId(const QString& id) const&;
    [[nodiscard]] ResultRecord withEngineId(const QString& id) &&;
    [[nodiscard]] ResultRecord withChecksum(const QString& digest) const&;
    [[nodiscard]] ResultRecord withChecksum(const QString& digest) &&;
    [[nodiscard]] ResultRecord withNewSincePrevious(bool isNew) const&;
    [[nodiscard]] ResultRecord withNewSincePrevious(bool isNew) &&;

    /// Whole-record equality: same keys, equal values, the unknown ones included.
    friend bool operator==(const ResultRecord& a, const ResultRecord& b);

    /// The typed members behind the record, for the archive code and the comparator of this folder.
    [[nodiscard]] const RecordData& data() const { return *_data; }
    explicit ResultRecord(std::unique_ptr<RecordData> data);

private:
    void retain() const;
    /// The members to change: this record's own block.
    RecordData& detached();

    /// Counted in the block itself; none only in a record that was moved from.
    const RecordData* _data;
};

using ResultList = QList<ResultRecord>;

} // namespace quarry
