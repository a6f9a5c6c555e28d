#pragma once

#include "archive/StringTable.h"
#include "support/Screen.h"
#include "support/TemporaryHome.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QStyle>
#include <QStyleFactory>

namespace quarry::test {

using namespace Qt::Literals::StringLiterals;

/// The English texts, with the release notes at an address of the test's.
inline StringTable textsWithNotes(const QByteArray& address)
{
    const QTemporaryDir resources;
    QDir(resources.path()).mkpath(u"English.lproj"_s);
    QByteArray table = contentOf(QStringLiteral(QUARRY_BUNDLE_DIR "/Resources/English.lproj/Updater.strings"));
    const qsizetype key = table.indexOf("130_ReleaseNoteRTFUrl");
    table.insert(table.indexOf("<string>", key) + 8, address);
    writeFile(resources.filePath(u"English.lproj/Updater.strings"_s), table);
    return StringTable(resources.path(), {u"C"_s}, u"Updater"_s);
}

/// Colors of a dark desktop, or of a light one.
inline void setDark(bool isDark)
{
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QApplication::setPalette(isDark ? darkPalette() : QApplication::style()->standardPalette());
}

/// The button with that text in any open window; null when there is none.
inline QAbstractButton* openButton(const QString& text)
{
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
            if (button->text() == text && button->isVisible())
                return button;
        }
    }
    return nullptr;
}

} // namespace quarry::test
