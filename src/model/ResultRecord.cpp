#include "model/ResultRecord.h"

#include "model/RecordData.h"

namespace quarry {

namespace {

std::optional<QString> textOf(const RecordData& data, RecordKey key)
{
    return data.has(key) ? std::optional(data.text(key).toString()) : std::nullopt;
}

std::optional<bool> flagOf(const RecordData& data, RecordKey key)
{
    return data.has(key) ? std::optional(data.flag(key)) : std::nullopt;
}

/// Every record without keys shares this block, which has a share of its own.
const RecordData* emptyData()
{
    struct Block final : RecordData {
        Block() { shares.store(1); }
    };
    static const Block block;
    return &block;
}

} // namespace

ResultRecord::ResultRecord() : _data(emptyData())
{
    retain();
}

ResultRecord::ResultRecord(std::unique_ptr<RecordData> data) : _data(data.release())
{
    retain();
}

ResultRecord::~ResultRecord()
{
    if (_data && _data->shares.fetch_sub(1, std::memory_order_acq_rel) == 1)
        std::default_delete<const RecordData>()(_data);
}

void ResultRecord::retain() const
{
    if (_data)
        _data->shares.fetch_add(1, std::memory_order_relaxed);
}

RecordData& ResultRecord::detached()
{
    if (_data->shares.load(std::memory_order_acquire) != 1)
        *this = ResultRecord(std::make_unique<RecordData>(*_data));
    return const_cast<RecordData&>(*_data);
}

std::optional<QString> ResultRecord::title() const
{
    return textOf(*_data, RecordKey::Title);
}

std::optional<QString> ResultRecord::urlText() const
{
    return textOf(*_data, RecordKey::Url);
}

std::optional<QString> ResultRecord::textFromPage() const
{
    return textOf(*_data, RecordKey::TextFromPage);
}

std::optional<QString> ResultRecord::parentQueryUuid() const
{
    return textOf(*_data, RecordKey::ParentQueryUuid);
}

std::optional<QString> ResultRecord::linkUuid() const
{
    return textOf(*_data, RecordKey::LinkUuid);
}

std::optional<QString> ResultRecord::engineId() const
{
    return textOf(*_data, RecordKey::EngineId);
}

std::optional<QString> ResultRecord::checksum() const
{
    return textOf(*_data, RecordKey::Checksum);
}

std::optional<Url> ResultRecord::url() const
{
    return _data->has(RecordKey::Url) ? std::optional(Url::fromStored(_data->text(RecordKey::Url).toString()))
                                      : std::nullopt;
}

std::optional<bool> ResultRecord::userSaw() const
{
    return flagOf(*_data, RecordKey::UserSaw);
}

std::optional<bool> ResultRecord::visible() const
{
    return flagOf(*_data, RecordKey::Visible);
}

std::optional<bool> ResultRecord::newSincePrevious() const
{
    return flagOf(*_data, RecordKey::NewSincePrevious);
}

std::optional<Date> ResultRecord::dateOfFind() const
{
    return _data->has(RecordKey::DateOfFind) ? std::optional(Date(_data->date)) : std::nullopt;
}

std::optional<qint64> ResultRecord::rank() const
{
    return _data->has(RecordKey::Rank) ? std::optional(qint64(_data->rank)) : std::nullopt;
}

std::optional<qint64> ResultRecord::rating() const
{
    return _data->has(RecordKey::Rating) ? std::optional(qint64(_data->rating)) : std::nullopt;
}

ResultRecord ResultRecord::withTitle(const QString& text) &&
{
    detached().setText(RecordKey::Title, StoredText::copyOf(text));
    return std::move(*this);
}

ResultRecord ResultRecord::withTitle(const QString& text) const&
{
    return ResultRecord(*this).withTitle(text);
}

ResultRecord ResultRecord::withUrl(const Url& url) &&
{
    detached().setText(RecordKey::Url, StoredText::copyOf(url.absoluteString()));
    return std::move(*this);
}

ResultRecord ResultRecord::withUrl(const Url& url) const&
{
    return ResultRecord(*this).withUrl(url);
}

ResultRecord ResultRecord::withTextFromPage(const QString& text) &&
{
    detached().setText(RecordKey::TextFromPage, StoredText::copyOf(text));
    return std::move(*this);
}

ResultRecord ResultRecord::withTextFromPage(const QString& text) const&
{
    return ResultRecord(*this).withTextFromPage(text);
}

ResultRecord ResultRecord::withUserSaw(bool saw) &&
{
    detached().setFlag(RecordKey::UserSaw, saw);
    return std::move(*this);
}

ResultRecord ResultRecord::withUserSaw(bool saw) const&
{
    return ResultRecord(*this).withUserSaw(saw);
}

ResultRecord ResultRecord::withDateOfFind(Date date) &&
{
    detached().setDate(date.secondsSinceReference());
    return std::move(*this);
}

ResultRecord ResultRecord::withDateOfFind(Date date) const&
{
    return ResultRecord(*this).withDateOfFind(date);
}

ResultRecord ResultRecord::withRank(qint64 rank) &&
{
    detached().setInteger(RecordKey::Rank, rank);
    return std::move(*this);
}

ResultRecord ResultRecord::withRank(qint64 rank) const&
{
    return ResultRecord(*this).withRank(rank);
}

ResultRecord ResultRecord::withRating(qint64 rating) &&
{
    detached().setInteger(RecordKey::Rating, rating);
    return std::move(*this);
}

ResultRecord ResultRecord::withRating(qint64 rating) const&
{
    return ResultRecord(*this).withRating(rating);
}

ResultRecord ResultRecord::withVisible(bool visible) &&
{
    detached().setFlag(RecordKey::Visible, visible);
    return std::move(*this);
}

ResultRecord ResultRecord::withVisible(bool visible) const&
{
    return ResultRecord(*this).withVisible(visible);
}

ResultRecord ResultRecord::withParentQueryUuid(const QString& uuid) &&
{
    detached().setText(RecordKey::ParentQueryUuid, StoredText::copyOf(uuid));
    return std::move(*this);
}

ResultRecord ResultRecord::withParentQueryUuid(const QString& uuid) const&
{
    return ResultRecord(*this).withParentQueryUuid(uuid);
}

ResultRecord ResultRecord::withLinkUuid(const QString& uuid) &&
{
    detached().setText(RecordKey::LinkUuid, StoredText::copyOf(uuid));
    return std::move(*this);
}

ResultRecord ResultRecord::withLinkUuid(const QString& uuid) const&
{
    return ResultRecord(*this).withLinkUuid(uuid);
}

ResultRecord ResultRecord::withEngineId(const QString& id) &&
{
    detached().setText(RecordKey::EngineId, StoredText::copyOf(id));
    return std::move(*this);
}

ResultRecord ResultRecord::withEngineId(const QString& id) const&
{
    return ResultRecord(*this).withEngineId(id);
}

ResultRecord ResultRecord::withChecksum(const QString& digest) &&
{
    detached().setText(RecordKey::Checksum, StoredText::copyOf(digest));
    return std::move(*this);
}

ResultRecord ResultRecord::withChecksum(const QString& digest) const&
{
    return ResultRecord(*this).withChecksum(digest);
}

ResultRecord ResultRecord::withNewSincePrevious(bool isNew) &&
{
    detached().setFlag(RecordKey::NewSincePrevious, isNew);
    return std::move(*this);
}

ResultRecord ResultRecord::withNewSincePrevious(bool isNew) const&
{
    return ResultRecord(*this).withNewSincePrevious(isNew);
}

bool operator==(const ResultRecord& a, const ResultRecord& b)
{
    return a._data == b._data || *a._data == *b._data;
}

} // namespace quarry
