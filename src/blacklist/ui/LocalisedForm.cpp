#include "blacklist/ui/LocalisedForm.h"

#include "blacklist/BlacklistRule.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QTabWidget>

namespace quarry {

namespace {

QString localised(const QString& key, const StringTable& texts)
{
    return key.isEmpty() ? key : texts.text(key);
}

} // namespace

void localiseForm(QWidget& window, const StringTable& texts)
{
    window.setWindowTitle(localised(window.windowTitle(), texts));
    for (QWidget* const part : window.findChildren<QWidget*>())
        part->setAccessibleName(localised(part->accessibleName(), texts).remove(u'&'));
    for (QLabel* const label : window.findChildren<QLabel*>())
        label->setText(localised(label->text(), texts));
    for (QAbstractButton* const button : window.findChildren<QAbstractButton*>())
        button->setText(localised(button->text(), texts));
    for (QGroupBox* const box : window.findChildren<QGroupBox*>())
        box->setTitle(localised(box->title(), texts));
    for (QTabWidget* const tabs : window.findChildren<QTabWidget*>()) {
        for (int i = 0; i < tabs->count(); ++i)
            tabs->setTabText(i, localised(tabs->tabText(i), texts));
    }
    for (QComboBox* const menu : window.findChildren<QComboBox*>()) {
        for (int i = 0; i < menu->count(); ++i)
            menu->setItemText(i, localised(menu->itemText(i), texts));
    }
}

QString kindName(qint64 type, const StringTable& texts)
{
    switch (type) {
    case BlacklistType::Text:
        return texts.text(QStringLiteral("110_Simple Filter type cell"));
    case BlacklistType::Domain:
        return texts.text(QStringLiteral("110_Domain Filter type cell"));
    case BlacklistType::FileType:
        return texts.text(QStringLiteral("110_File Filter type cell"));
    case BlacklistType::RegularExpression:
        return texts.text(QStringLiteral("110_Regexp Filter type cell"));
    default:
        return {};
    }
}

} // namespace quarry
