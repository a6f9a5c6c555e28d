#pragma once

#include <QHash>
#include <QIcon>
#include <QStyle>
#include <QStyledItemDelegate>

namespace quarry {

/// Draws a row of the tree: the title (bold with unread results, faint when paused), a sign while it is updated, and a
/// badge with the number of unread results.
class TreeDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// Leaves alone what is being typed.
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    [[nodiscard]] QIcon icon(QStyle::StandardPixmap picture) const;

    /// The style reads its files again each time it is asked: that took most of the time of drawing the window.
    mutable QHash<QStyle::StandardPixmap, QIcon> _icons;
};

} // namespace quarry
