#pragma once

#include "archive/StringTable.h"
#include "model/ResultKeys.h"
#include "session/ResultListing.h"
#include "session/TreeEdits.h"

#include <QAbstractTableModel>

namespace quarry {

/// A listing as a view wants it. Nothing is copied a row: a cell is decoded from its record when it is drawn.
class ResultModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { TitleColumn, ServiceColumn, RankColumn, FoundColumn, RatingColumn, ColumnCount };
    enum Role {
        RecordRole = Qt::UserRole, ///< Qt::DisplayRole of each column is its text.
        UnreadRole,                ///< bool
        FreshRole,                 ///< bool: brought by the latest update
        RatingRole,                ///< int
        AddressRole,               ///< QString
        ServiceRole,               ///< QString: the service's identifier
    };

    /// `texts` must outlive the model.
    explicit ResultModel(const StringTable& texts, QObject* parent = nullptr);

    /// Answers the one that was shown before.
    ResultListing setListing(ResultListing listing);
    [[nodiscard]] const ResultListing& listing() const { return _listing; }

    [[nodiscard]] const ResultListing::Row& row(const QModelIndex& index) const;
    /// Those results, by their queries.
    [[nodiscard]] ResultSelection selection(const QModelIndexList& indexes) const;
    [[nodiscard]] QModelIndex indexOf(const QString& queryUuid, const QString& key) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    [[nodiscard]] QVariant textOf(const ResultRecord& record, int column) const;
    /// What is drawn only, in words: none where the cell's text says it all.
    [[nodiscard]] QVariant spoken(const ResultRecord& record, int column) const;
    [[nodiscard]] QVariant toolTip(const ResultRecord& record, int column) const;
    [[nodiscard]] QString ratingWords(const ResultRecord& record) const;

    const StringTable& _texts;
    ResultListing _listing;
};

} // namespace quarry
