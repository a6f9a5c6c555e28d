#include "window/TreeDelegate.h"

#include "model/QueryCore.h"
#include "window/TreeModel.h"

#include <QApplication>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>
#include <QStyle>

namespace quarry {

namespace {

constexpr int BadgeMargin = 6;

QString badgeOf(const QModelIndex& index)
{
    const qint64 unread = index.data(TreeModel::UnreadRole).toLongLong();
    return unread > 0 ? QLocale().toString(unread) : QString();
}

QStyle::StandardPixmap pictureOf(const QModelIndex& index)
{
    if (index.data(TreeModel::UpdatingRole).toBool())
        return QStyle::SP_BrowserReload;
    if (index.data(TreeModel::PausedRole).toBool())
        return QStyle::SP_MediaPause;
    if (index.data(TreeModel::UuidRole).toString().isEmpty())
        return QStyle::SP_FileDialogDetailedView;
    const bool isFolder = index.data(TreeModel::KindRole).toInt() == int(QueryKind::Folder);
    return isFolder ? QStyle::SP_DirIcon : QStyle::SP_FileDialogContentsView;
}

} // namespace

QIcon TreeDelegate::icon(QStyle::StandardPixmap picture) const
{
    QIcon& kept = _icons[picture];
    if (kept.isNull())
        kept = QApplication::style()->standardIcon(picture);
    return kept;
}

void TreeDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->icon = icon(pictureOf(index));
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->font.setBold(!badgeOf(index).isEmpty());
    if (index.data(TreeModel::PausedRole).toBool())
        option->palette.setColor(QPalette::Text, option->palette.color(QPalette::Disabled, QPalette::Text));
}

void TreeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QString badge = badgeOf(index);
    QStyleOptionViewItem drawn = option;
    initStyleOption(&drawn, index);
    const QFontMetrics metrics(drawn.font);
    const int width = badge.isEmpty() ? 0 : metrics.horizontalAdvance(badge) + 2 * BadgeMargin;
    // The row is drawn over its whole width, so that a selection reaches its end; only the text makes room.
    const QStyle& style = drawn.widget ? *drawn.widget->style() : *QApplication::style();
    const QRect text = style.subElementRect(QStyle::SE_ItemViewItemText, &drawn, drawn.widget);
    drawn.text = metrics.elidedText(drawn.text, Qt::ElideRight, text.width() - width - BadgeMargin);
    style.drawControl(QStyle::CE_ItemViewItem, &drawn, painter, drawn.widget);
    if (badge.isEmpty())
        return;

    QRect bubble(0, 0, std::max(width, metrics.height()), metrics.height());
    bubble.moveCenter(option.rect.center());
    if (option.direction == Qt::RightToLeft)
        bubble.moveLeft(option.rect.left() + BadgeMargin / 2);
    else
        bubble.moveRight(option.rect.right() - BadgeMargin / 2);
    const bool isSelected = (option.state & QStyle::State_Selected) != 0;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Highlight));
    painter->drawRoundedRect(bubble, bubble.height() / 2.0, bubble.height() / 2.0);
    painter->setPen(option.palette.color(isSelected ? QPalette::Highlight : QPalette::HighlightedText));
    painter->setFont(drawn.font);
    painter->drawText(bubble, Qt::AlignCenter, badge);
    painter->restore();
}

void TreeDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    // The view asks for this with every change of the row, whatever changed.
    const auto* const line = qobject_cast<QLineEdit*>(editor);
    if (!line || (!line->isModified() && line->text() != index.data(Qt::EditRole).toString()))
        QStyledItemDelegate::setEditorData(editor, index);
}

QSize TreeDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    return {size.width(), size.height() + 4};
}

} // namespace quarry
