#pragma once

#include "support/Screen.h"

namespace quarry {

/// A bar at the top of the screen that shows the icons of programs, in that color.
inline DesktopProgram trayOf(const QString& color)
{
    return {
        QStringLiteral("trayer"),
        QStringLiteral("--edge top --align right --height 32 --widthtype request --transparent true --alpha 0 --tint ")
                .split(u' ', Qt::SkipEmptyParts) +
            QStringList{color}};
}

/// Where the bar shows the agent's open eye: its iris. The blinking icon has one every other second.
inline QRect openEye()
{
    return placeLike(QColor(255, 157, 0), screenshot(), QRect(0, 0, 1280, 40));
}

/// Clicks as a user does.
inline void clickScreen(QPoint place, int button = 1)
{
    QProcess::execute(QStringLiteral("xdotool"),
                      {QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y()),
                       QStringLiteral("click"), QString::number(button)});
}

} // namespace quarry
