#include "window/ResultModel.h"

#include "engines/SearchServices.h"
#include "exchange/Names.h"
#include "text/LocalisedFormat.h"
#include "window/ServiceIcons.h"

#include <QDateTime>
#include <QLocale>

#include <array>

namespace quarry {

namespace {

constexpr int MostStars = 5;

QDateTime foundAt(const ResultRecord& record)
{
    return record.dateOfFind() ? QDateTime::fromMSecsSinceEpoch(qint64(record.dateOfFind()->unixSeconds() * 1000.0))
                               : QDateTime();
}

} // namespace

ResultModel::ResultModel(const StringTable& texts, QObject* parent) : QAbstractTableModel(parent), _texts(texts) {}

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
        return QLocale().toString(foundAt(record).date(), QLocale::ShortFormat);
    default:
        return {};
    }
}

QString ResultModel::ratingWords(const ResultRecord& record) const
{
    const qint64 stars = record.rating().value_or(0);
    const QLocale locale;
    return stars == 0 ? _texts.text(QStringLiteral("203_No rating"))
                      : filledFormat(_texts.text(QStringLiteral("202_Rating")),
                                     {locale.toString(stars), locale.toString(MostStars)});
}

QVariant ResultModel::spoken(const ResultRecord& record, int column) const
{
    if (column == RatingColumn)
        return ratingWords(record);
    if (column != TitleColumn)
        return {};
    QStringList words;
    if (!record.isRead())
        words.append(_texts.text(QStringLiteral("202_Unread")));
    if (record.newSincePrevious().value_or(false))
        words.append(_texts.text(QStringLiteral("202_New")));
    words.append(textOf(record, TitleColumn).toString());
    return words.join(QLatin1String(", "));
}

QVariant ResultModel::toolTip(const ResultRecord& record, int column) const
{
    switch (column) {
    case TitleColumn: {
        QStringList lines = {textOf(record, TitleColumn).toString(), record.urlText().value_or(QString())};
        if (record.newSincePrevious().value_or(false))
            lines.append(_texts.text(QStringLiteral("202_New tip")));
        lines.removeDuplicates();
        for (QString& line : lines)
            line = line.toHtmlEscaped(); // Pages write titles: they are no markup here. Markup is wrapped.
        return QStringLiteral("<qt>%1</qt>").arg(lines.join(QLatin1String("<br>")));
    }
    case RatingColumn:
        return ratingWords(record);
    case FoundColumn:
        return QLocale().toString(foundAt(record), QLocale::LongFormat);
    default:
        return textOf(record, column).toString();
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
        return toolTip(record, index.column());
    case Qt::AccessibleTextRole:
        return spoken(record, index.column());
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
    constexpr std::array Titles = {u"202_Column title", u"202_Column service", u"202_Column rank", u"202_Column found",
                                   u"202_Column rating"};
    static_assert(Titles.size() == ColumnCount);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return _texts.text(QString::fromUtf16(Titles.at(static_cast<std::size_t>(section))));
}

} // namespace quarry
