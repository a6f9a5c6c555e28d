#pragma once

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPalette>
#include <QProcess>
#include <QScreen>
#include <QWidget>
#include <QtCore/qtestsupport_core.h>

namespace quarry {

/// Runs the event loop until it is so; false after ten seconds.
template <typename Condition>
[[nodiscard]] bool happens(const Condition& condition)
{
    return QTest::qWaitFor(condition, 10000);
}

/// What is on the screen now. With QUARRY_SCREENSHOTS set to a folder, also kept there under the name.
inline QImage screenshot(const QString& name = {})
{
    QImage image = QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(QImage::Format_RGB32);
    const QString folder = qEnvironmentVariable("QUARRY_SCREENSHOTS");
    if (!folder.isEmpty() && !name.isEmpty())
        image.save(QDir(folder).filePath(name + QStringLiteral(".png")));
    return image;
}

/// With QUARRY_SCREENSHOTS set to a folder, keeps there how a widget looks.
inline void keepPicture(QWidget* widget, const QString& name)
{
    QCoreApplication::processEvents(); // Layouts are made anew from the event loop.
    if (const QString folder = qEnvironmentVariable("QUARRY_SCREENSHOTS"); !folder.isEmpty())
        widget->grab().save(QDir(folder).filePath(name + QStringLiteral(".png")));
}

/// The colors of a dark desktop.
inline QPalette darkPalette()
{
    QPalette dark(QColor(53, 53, 53), QColor(42, 42, 42));
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, QColor(235, 235, 235));
    dark.setColor(QPalette::ButtonText, Qt::white);
    dark.setColor(QPalette::Highlight, QColor(61, 142, 201));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::Link, QColor(122, 184, 245));
    return dark;
}

/// Whether a pixel is that color, give or take a little of each part.
inline bool isLike(const QColor& color, const QColor& pixel, int tolerance)
{
    const auto near = [tolerance](int a, int b) { return std::abs(a - b) <= tolerance; };
    return near(pixel.red(), color.red()) && near(pixel.green(), color.green()) && near(pixel.blue(), color.blue());
}

/// How many pixels of an image, or of a part of it, are like that color.
inline int pixelsLike(const QColor& color, const QImage& image, QRect part = {}, int tolerance = 6)
{
    part = part.isNull() ? image.rect() : part.intersected(image.rect());
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x)
            count += isLike(color, image.pixelColor(x, y), tolerance);
    }
    return count;
}

/// The smallest part that holds all of these pixels; null without any.
inline QRect placeLike(const QColor& color, const QImage& image, const QRect& part, int tolerance = 6)
{
    QRect place;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            if (isLike(color, image.pixelColor(x, y), tolerance))
                place |= QRect(x, y, 1, 1);
        }
    }
    return place;
}

/// A program of the desktop that ends with the test.
class DesktopProgram final {
public:
    DesktopProgram(const QString& program, const QStringList& arguments)
    {
        _process.setProcessChannelMode(QProcess::ForwardedChannels);
        _process.start(program, arguments);
    }
    ~DesktopProgram()
    {
        _process.kill();
        _process.waitForFinished();
    }

private:
    QProcess _process;
};

} // namespace quarry
