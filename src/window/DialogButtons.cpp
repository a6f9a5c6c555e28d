#include "window/DialogButtons.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

namespace quarry {

QDialogButtonBox* okAndCancel(const StringTable& texts, QDialog* dialog)
{
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    buttons->button(QDialogButtonBox::Ok)->setText(texts.text(QStringLiteral("200_OK")));
    buttons->button(QDialogButtonBox::Cancel)->setText(texts.text(QStringLiteral("200_Cancel")));
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

} // namespace quarry
