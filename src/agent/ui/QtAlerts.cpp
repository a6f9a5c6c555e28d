#include "agent/ui/QtAlerts.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTextDocument>

namespace quarry {

namespace {

/// The first button is the default one; closing the window is the last one.
QMessageBox* boxFor(const Alerts::Alert& alert)
{
    auto* box = new QMessageBox(QMessageBox::Information, QStringLiteral("QuarrySpotter"), alert.title);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false); // Else the menu would be blocked while it is open.
    box->setTextFormat(Qt::PlainText);
    // This text has no format of its own: what looks like markup is taken for it, unless it is escaped.
    box->setInformativeText(Qt::convertFromPlainText(alert.text, Qt::WhiteSpaceNormal));
    // The roles keep the buttons in the desktop's own order.
    QPushButton* last = nullptr;
    for (const QString& button : alert.buttons) {
        const bool isFirst = last == nullptr;
        last = box->addButton(QString(button).replace(u'&', QLatin1String("&&")),
                              isFirst ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
        if (isFirst)
            box->setDefaultButton(last);
    }
    if (last)
        box->setEscapeButton(last);
    return box;
}

void bringToFront(QMessageBox& box)
{
    box.show();
    box.raise();
    box.activateWindow();
}

} // namespace

QtAlerts::~QtAlerts()
{
    for (const QPointer<QMessageBox>& box : std::as_const(_open)) {
        if (box) {
            box->disconnect();
            delete box;
        }
    }
}

void QtAlerts::ask(const Alert& alert, std::function<void(int button)> answer)
{
    QPointer<QMessageBox>& open = _open[alert.title];
    if (!open) {
        open = boxFor(alert);
        QMessageBox* box = open;
        const QStringList buttons = alert.buttons;
        QObject::connect(box, &QMessageBox::finished, box,
                         [this, box, title = alert.title, answer = std::move(answer)] {
                             const qsizetype button = box->buttons().indexOf(box->clickedButton());
                             const qsizetype last = box->buttons().size() - 1;
                             // The answer may ask again, or end this object.
                             _open.remove(title);
                             if (answer)
                                 answer(static_cast<int>(button < 0 ? last : button));
                         });
    }
    bringToFront(*open);
}

} // namespace quarry
