#include "window/ResultModel.h"

#include "engines/SearchServices.h"
#include "exchange/Names.h"
#include "window/ServiceIcons.h"

#include <QDateTime>
#include <QLocale>

namespace quarry {

ResultModel::ResultModel(QStringList columnTitles, QObject* parent)
    : QAbstractTableModel(parent), _columnTitles(std::move(columnTitles))
{
}

ResultListing ResultModel::setListing(ResultListing listing)
{
    beginResetModel();
    std::swap(_listing, listing);
    endResetModel();
    return listing;
}

const ResultListing::Row& ResultModel::row(const QModelIndex& index) const
{
    return _listing.row(static_cast<std::size_t>(index.row()));
}

ResultSelection ResultModel::selection(const QModelIndexList& indexes) const
{
    ResultSelection selection;
    for (const QModelIndex& index : indexes) {
        const ResultListing::Row& at = row(index);
        selection[_listing.queryUuid(at)].add(at.record);
    }
    return selection;
}

QModelIndex ResultModel::indexOf(const QString& queryUuid, const QString& key) const
{
    const std::ptrdiff_t place = _listing.placeOf(queryUuid, key);
    return place < 0 ? QModelIndex() : index(static_cast<int>(place), 0);
}

int ResultModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(_listing.size());
}

int ResultModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ResultModel::textOf(const ResultRecord& record, int column) const
{
    switch (column) {
    case TitleColumn: {
        const QString title = record.title().value_or(QString());
        return title.isEmpty() ? record.urlText().value_or(QString()) : title;
    }
    case ServiceColumn:
        return engineName(record.engineId().value_or(QString()));
    case RankColumn:
        return record.rank() ? QVariant(*record.rank()) : QVariant();
    case FoundColumn:
        return record.dateOfFind()
                   ? QLocale().toString(
                         QDateTime::fromMSecsSinceEpoch(qint64(record.dateOfFind()->unixSeconds() * 1000.0)).date(),
                         QLocale::ShortFormat)
                   : QString();
    default:
        return {};
    }
}

QVariant ResultModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const ResultRecord& record = row(index).record;
    switch (role) {
    case Qt::DisplayRole:
        return textOf(record, index.column());
    case Qt::DecorationRole:
        return index.column() == ServiceColumn ? QVariant(serviceIcon(record.engineId().value_or(QString())))
                                               : QVariant();
    case Qt::ToolTipRole:
        return index.column() == TitleColumn ? record.urlText().value_or(QString()) : QVariant();
    case Qt::TextAlignmentRole:
        return index.column() == RankColumn ? QVariant(int(Qt::AlignTrailing | Qt::AlignVCenter)) : QVariant();
    case UnreadRole:
        return !record.isRead();
    case FreshRole:
        return record.newSincePrevious().value_or(false);
    case RatingRole:
        return int(record.rating().value_or(0));
    case AddressRole:
        return record.urlText().value_or(QString());
    case ServiceRole:
        return record.engineId().value_or(QString());
    default:
        return {};
    }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return _columnTitles.value(section);
}

} // namespace quarry
