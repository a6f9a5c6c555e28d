#include "window/WelcomePane.h"

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

namespace quarry {

namespace {

constexpr int ColumnWidth = 620;
constexpr int PictureSize = 64;
constexpr int MostMinutes = 1000000;

QLabel* paragraph(const QString& text)
{
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

WelcomePane::WelcomePane(const StringTable& texts, QWidget* parent) : QScrollArea(parent), _texts(texts)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    auto* const page = new QWidget(this);
    auto* const sides = new QHBoxLayout(page);
    auto* const middle = new QWidget(page);
    middle->setMaximumWidth(ColumnWidth);
    sides->addStretch(1);
    sides->addWidget(middle, 1000);
    sides->addStretch(1);
    auto* const column = new QVBoxLayout(middle);
    column->addStretch(1);
    addHead(*column);
    addQuery(*column);
    addServices(*column);
    addSchedule(*column);
    column->addStretch(2);
    setWidget(page);
}

QString WelcomePane::text(const char16_t* key) const
{
    return _texts.text(QString::fromUtf16(key));
}

void WelcomePane::addHead(QVBoxLayout& column)
{
    auto* const row = new QHBoxLayout;
    auto* const picture = new QLabel;
    picture->setPixmap(QApplication::windowIcon().pixmap(PictureSize));
    auto* const title = new QLabel(text(u"207_Title"));
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    title->setFont(font);
    row->addWidget(picture);
    row->addSpacing(12);
    row->addWidget(title, 1);
    column.addLayout(row);
    column.addWidget(paragraph(text(u"207_What it does")));
    column.addSpacing(12);
}

void WelcomePane::addQuery(QVBoxLayout& column)
{
    auto* const group = new QGroupBox(text(u"207_First query"));
    auto* const row = new QHBoxLayout(group);
    _query = new QLineEdit(group);
    _query->setObjectName(QStringLiteral("firstQuery"));
    _query->setPlaceholderText(text(u"207_Query example"));
    _query->setAccessibleName(text(u"207_First query"));
    auto* const add = new QPushButton(text(u"207_Add query"), group);
    add->setObjectName(QStringLiteral("addFirstQuery"));
    add->setEnabled(false);
    row->addWidget(_query, 1);
    row->addWidget(add);
    column.addWidget(group);
    connect(_query, &QLineEdit::textChanged, add,
            [add](const QString& words) { add->setEnabled(!words.trimmed().isEmpty()); });
    connect(_query, &QLineEdit::returnPressed, this, &WelcomePane::sayQuery);
    connect(add, &QPushButton::clicked, this, &WelcomePane::sayQuery);
}

void WelcomePane::addServices(QVBoxLayout& column)
{
    auto* const group = new QGroupBox(text(u"207_Services"));
    auto* const rows = new QVBoxLayout(group);
    _public = new QRadioButton(text(u"207_Public services"), group);
    _gateway = new QRadioButton(text(u"207_Gateway"), group);
    _gateway->setObjectName(QStringLiteral("useGateway"));
    _address = new QLineEdit(QStringLiteral("http://127.0.0.1:8642"), group);
    _address->setObjectName(QStringLiteral("gatewayAddress"));
    _address->setAccessibleName(text(u"207_Gateway address"));
    _address->setEnabled(false);
    auto* const gateway = new QHBoxLayout;
    gateway->addWidget(_gateway);
    gateway->addWidget(_address, 1);
    rows->addWidget(_public);
    rows->addLayout(gateway);
    rows->addWidget(paragraph(text(u"207_Gateway hint")));
    column.addWidget(group);
    connect(_gateway, &QRadioButton::toggled, _address, &QWidget::setEnabled);
    connect(_gateway, &QRadioButton::toggled, this, &WelcomePane::sayServices);
    connect(_address, &QLineEdit::editingFinished, this, &WelcomePane::sayServices);
}

void WelcomePane::addSchedule(QVBoxLayout& column)
{
    auto* const group = new QGroupBox(text(u"207_Schedule"));
    auto* const rows = new QVBoxLayout(group);
    auto* const row = new QHBoxLayout;
    _automatic = new QCheckBox(text(u"207_Automatic"), group);
    _automatic->setObjectName(QStringLiteral("automatic"));
    _minutes = new QSpinBox(group);
    _minutes->setRange(1, MostMinutes);
    _minutes->setSuffix(u' ' + text(u"207_Minutes"));
    _minutes->setAccessibleName(text(u"207_Automatic"));
    // Not at each digit on the way.
    _minutes->setKeyboardTracking(false);
    row->addWidget(_automatic);
    row->addWidget(_minutes);
    row->addStretch(1);
    rows->addLayout(row);
    rows->addWidget(paragraph(text(u"207_Schedule hint")));
    column.addWidget(group);
    connect(_automatic, &QCheckBox::toggled, this, &WelcomePane::saySchedule);
    connect(_minutes, &QSpinBox::valueChanged, this, &WelcomePane::saySchedule);
}

void WelcomePane::showSettings(const Settings& settings)
{
    const QSignalBlocker blockers[] = {QSignalBlocker(_automatic), QSignalBlocker(_minutes), QSignalBlocker(_gateway),
                                       QSignalBlocker(_public), QSignalBlocker(_address)};
    _automatic->setChecked(settings.automatic);
    _minutes->setValue(settings.minutes);
    (settings.gateway.isEmpty() ? _public : _gateway)->setChecked(true);
    _address->setEnabled(!settings.gateway.isEmpty());
    if (!settings.gateway.isEmpty())
        _address->setText(settings.gateway);
    _said = settings.gateway;
}

void WelcomePane::focusQuery()
{
    _query->setFocus(Qt::OtherFocusReason);
}

void WelcomePane::sayQuery()
{
    const QString words = _query->text().trimmed();
    if (words.isEmpty())
        return;
    _query->clear();
    Q_EMIT queryWanted(words);
}

void WelcomePane::saySchedule()
{
    Q_EMIT scheduleWanted(_automatic->isChecked(), _minutes->value());
}

void WelcomePane::sayServices()
{
    const QString wanted = _gateway->isChecked() ? _address->text().trimmed() : QString();
    // The button and the field both tell, and leaving the field tells again.
    if (std::exchange(_said, wanted) != wanted)
        Q_EMIT servicesWanted(wanted);
}

} // namespace quarry
