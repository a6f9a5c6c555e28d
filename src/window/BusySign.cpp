#include "window/BusySign.h"

#include <QProgressDialog>

namespace quarry {

namespace {

constexpr int AfterMilliseconds = 500;

} // namespace

QProgressDialog* makeBusySign(const QString& title, const QString& text, const StringTable& texts, QWidget* window)
{
    auto* const sign = new QProgressDialog(text, texts.text(QStringLiteral("203_Stop refresh")), 0, 0, window);
    sign->setWindowTitle(title);
    sign->setAttribute(Qt::WA_DeleteOnClose);
    sign->setWindowModality(Qt::NonModal);
    sign->setMinimumDuration(AfterMilliseconds);
    sign->setAutoReset(false);
    sign->setAutoClose(false);
    sign->setValue(0); // Only from here on it looks at the clock.
    return sign;
}

} // namespace quarry
