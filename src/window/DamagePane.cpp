#include "window/DamagePane.h"

#include "text/LocalisedFormat.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace quarry {

DamagePane::DamagePane(const StringTable& texts, QWidget* parent)
    : QWidget(parent), _texts(texts), _text(new QLabel(this)),
      _begin(new QPushButton(texts.text(QStringLiteral("208_Begin anew")), this))
{
    constexpr int PictureSize = 48;
    auto* const picture = new QLabel(this);
    picture->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(PictureSize));
    _text->setTextFormat(Qt::PlainText);
    _text->setWordWrap(true);
    _text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    _begin->setObjectName(QStringLiteral("beginAnew"));
    auto* const quit = new QPushButton(texts.text(QStringLiteral("203_Quit")), this);
    connect(_begin, &QPushButton::clicked, this, &DamagePane::beginWanted);
    connect(quit, &QPushButton::clicked, this, &DamagePane::quitWanted);

    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(_begin);
    buttons->addWidget(quit);
    buttons->addStretch(1);
    auto* const column = new QVBoxLayout;
    column->addStretch(1);
    column->addWidget(picture);
    column->addSpacing(12);
    column->addWidget(_text);
    column->addSpacing(12);
    column->addLayout(buttons);
    column->addStretch(2);
    auto* const row = new QHBoxLayout(this);
    row->addStretch(1);
    row->addLayout(column, 4);
    row->addStretch(1);
    // A key that was meant for something else must not decide.
    setFocusProxy(_text);
}

void DamagePane::show(const QString& reason, const QString& copy, bool mayBegin)
{
    QStringList lines = {filledFormat(_texts.text(QStringLiteral("208_Cannot be read")), {_texts.text(reason)})};
    if (mayBegin && !copy.isEmpty())
        lines.append(filledFormat(_texts.text(QStringLiteral("208_Copy")), {copy}));
    lines.append(_texts.text(mayBegin ? QStringLiteral("208_What to do") : QStringLiteral("208_Waiting")));
    _text->setText(lines.join(QStringLiteral("\n\n")));
    _begin->setVisible(mayBegin);
    setVisible(true);
}

} // namespace quarry
