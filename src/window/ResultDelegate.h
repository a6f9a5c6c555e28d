#pragma once

#include <QStyledItemDelegate>

namespace quarry {

/// Draws a result's row: unread in bold, a mark where the latest update brought it, stars that are clicked.
class ResultDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int MostStars = 5;

    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] static int rowHeight(const QFont& font);
    /// What the stars of a row take.
    [[nodiscard]] static int ratingWidth(const QFont& font);
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

Q_SIGNALS:
    /// Clicking the last star that is set takes the rating away: 0.
    void ratingClicked(const QModelIndex& row, int rating);

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;
};

} // namespace quarry
