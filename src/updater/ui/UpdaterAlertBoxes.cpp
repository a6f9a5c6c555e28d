#include "updater/ui/UpdaterAlertBoxes.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

/// The first button is the default one; closing the window is the last one.
void addButtons(QMessageBox& box, const QStringList& texts)
{
    QPushButton* last = nullptr;
    for (const QString& text : texts) {
        const bool isFirst = last == nullptr;
        // The roles keep the buttons in the desktop's own order.
        last = box.addButton(QString(text).replace(u'&', QLatin1String("&&")),
                             isFirst ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
        if (isFirst)
            box.setDefaultButton(last);
    }
    if (last)
        box.setEscapeButton(last);
}

} // namespace

UpdaterAlertBoxes::~UpdaterAlertBoxes()
{
    for (const QPointer<QMessageBox>& box : std::as_const(_open)) {
        if (box) {
            box->disconnect();
            delete box;
        }
    }
}

void UpdaterAlertBoxes::show(const UpdaterAlert& alert, std::function<void(int)> answered)
{
    auto* const box = new QMessageBox(QMessageBox::Information, QStringLiteral("QuarrySpotter"), alert.title);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->setTextFormat(Qt::PlainText);
    // This text has no format of its own: what looks like markup is taken for it, unless it is escaped.
    box->setInformativeText(Qt::convertFromPlainText(alert.message, Qt::WhiteSpaceNormal));
    addButtons(*box, alert.buttons);
    _open.removeAll(nullptr);
    _open.append(box);
    QObject::connect(box, &QMessageBox::finished, box, [this, box, answered = std::move(answered)] {
        const qsizetype button = box->buttons().indexOf(box->clickedButton());
        const qsizetype last = box->buttons().size() - 1;
        // The answer may show another message, or end this object.
        _open.removeAll(box);
        if (answered)
            answered(static_cast<int>(button < 0 ? last : button));
    });
    box->show();
    box->raise();
    box->activateWindow();
}

bool UpdaterAlertBoxes::isShowing() const
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(_open.begin(), _open.end(), [](const QPointer<QMessageBox>& box) { return !box.isNull(); }) ||
           std::any_of(windows.begin(), windows.end(),
                       [](const QWidget* window) { return window->isVisible() && window->isModal(); });
}

} // namespace quarry
