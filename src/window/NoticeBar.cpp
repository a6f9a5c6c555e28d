#include "window/NoticeBar.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

namespace quarry {

NoticeBar::NoticeBar(const StringTable& texts, QWidget* parent)
    : QFrame(parent), _icon(new QLabel(this)), _text(new QLabel(this))
{
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    _text->setForegroundRole(QPalette::ToolTipText);
    _text->setTextFormat(Qt::PlainText);
    _text->setWordWrap(true);
    _text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* const close = new QToolButton(this);
    close->setAutoRaise(true);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setToolTip(texts.text(QStringLiteral("200_Close notice")));
    close->setAccessibleName(close->toolTip());
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    auto* const layout = new QHBoxLayout(this);
    layout->addWidget(_icon, 0, Qt::AlignTop);
    layout->addWidget(_text, 1);
    layout->addWidget(close, 0, Qt::AlignTop);
    hide();
}

void NoticeBar::say(Kind kind, const QString& text)
{
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    const QStyle::StandardPixmap picture =
        kind == Kind::Warning ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
    _icon->setPixmap(style()->standardIcon(picture).pixmap(size));
    _text->setText(text);
    setVisible(!text.isEmpty());
    QAccessibleEvent event(_text, QAccessible::Alert); // Screen readers read it out.
    QAccessible::updateAccessibility(&event);
}

void NoticeBar::takeBack(const QString& text)
{
    if (_text->text() == text)
        hide();
}

} // namespace quarry
