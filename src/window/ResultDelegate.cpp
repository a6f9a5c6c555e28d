#include "window/ResultDelegate.h"

#include "window/ResultModel.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <numbers>

namespace quarry {

namespace {

constexpr int Margin = 4;
constexpr int MarkSize = 7;

int starSize(const QRect& cell)
{
    return std::min(cell.height() - 2 * Margin, (cell.width() - 2 * Margin) / ResultDelegate::MostStars);
}

QPainterPath star(const QRectF& box)
{
    constexpr int Points = 5;
    constexpr double InnerRadius = 0.42;
    QPainterPath path;
    for (int i = 0; i < 2 * Points; ++i) {
        const double radius = box.width() / 2 * (i % 2 == 0 ? 1.0 : InnerRadius);
        const double angle = std::numbers::pi * (double(i) / Points - 0.5);
        const QPointF point = box.center() + QPointF(radius * std::cos(angle), radius * std::sin(angle));
        if (i == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    path.closeSubpath();
    return path;
}

void paintStars(QPainter& painter, const QStyleOptionViewItem& option, int rating)
{
    const bool isSelected = (option.state & QStyle::State_Selected) != 0;
    const QColor colour = option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Highlight);
    const int size = starSize(option.rect);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, 1.0));
    for (int i = 0; i < ResultDelegate::MostStars; ++i) {
        const QRect place(option.rect.left() + Margin + i * size, option.rect.center().y() - size / 2, size, size);
        const QRectF box = QRectF(QStyle::visualRect(option.direction, option.rect, place)).adjusted(1, 1, -1, -1);
        painter.setBrush(i < rating ? QBrush(colour) : QBrush(Qt::NoBrush));
        painter.setOpacity(i < rating ? 1.0 : 0.5);
        painter.drawPath(star(box));
    }
    painter.restore();
}

} // namespace

int ResultDelegate::rowHeight(const QFont& font)
{
    return QFontMetrics(font).height() + 2 * Margin;
}

int ResultDelegate::ratingWidth(const QFont& font)
{
    return MostStars * (rowHeight(font) - 2 * Margin) + 2 * Margin;
}

void ResultDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->font.setBold(index.data(ResultModel::UnreadRole).toBool());
}

void ResultDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem drawn = option;
    drawn.state &= ~QStyle::State_HasFocus; // The row is what is current, not the cell.
    const bool isFresh = index.column() == ResultModel::TitleColumn && index.data(ResultModel::FreshRole).toBool();
    if (index.column() == ResultModel::RatingColumn) {
        QStyledItemDelegate::paint(painter, drawn, index);
        paintStars(*painter, drawn, index.data(ResultModel::RatingRole).toInt());
        return;
    }
    if (!isFresh) {
        QStyledItemDelegate::paint(painter, drawn, index);
        return;
    }
    const int room = MarkSize + 2 * Margin;
    QStyleOptionViewItem back = drawn;
    QApplication::style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &back, painter, back.widget);
    if (drawn.direction == Qt::RightToLeft)
        drawn.rect.adjust(0, 0, -room, 0);
    else
        drawn.rect.adjust(room, 0, 0, 0);
    QStyledItemDelegate::paint(painter, drawn, index);
    QRect mark(0, 0, MarkSize, MarkSize);
    mark.moveCenter(option.rect.center());
    if (drawn.direction == Qt::RightToLeft)
        mark.moveRight(option.rect.right() - Margin);
    else
        mark.moveLeft(option.rect.left() + Margin);
    const bool isSelected = (option.state & QStyle::State_Selected) != 0;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Highlight));
    painter->drawEllipse(mark);
    painter->restore();
}

QSize ResultDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (index.column() == ResultModel::RatingColumn)
        return {ratingWidth(option.font), rowHeight(option.font)};
    return {QStyledItemDelegate::sizeHint(option, index).width(), rowHeight(option.font)};
}

bool ResultDelegate::editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                                 const QModelIndex& index)
{
    if (index.column() != ResultModel::RatingColumn || event->type() != QEvent::MouseButtonRelease)
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    const auto* const mouse = static_cast<const QMouseEvent*>(event);
    const int size = starSize(option.rect);
    const QPoint at = QStyle::visualPos(option.direction, option.rect, mouse->position().toPoint());
    const int offset = at.x() - option.rect.left() - Margin;
    if (mouse->button() != Qt::LeftButton || size <= 0 || offset < 0 || offset >= size * MostStars)
        return false;
    const int clicked = offset / size + 1;
    Q_EMIT ratingClicked(index, clicked == index.data(ResultModel::RatingRole).toInt() ? 0 : clicked);
    return true;
}

} // namespace quarry
