#include "agent/ui/InfoMenuView.h"

#include "support/QtPrinting.h"
#include "support/Screen.h"

#include <QFontMetricsF>

#include <gtest/gtest.h>

using namespace quarry;
using namespace Qt::Literals::StringLiterals;

namespace {

InfoText::Line line(const QString& text, const QString& title)
{
    return {u'\n' + text + title, title.size()};
}

/// The view as painted in that size.
QImage painted(InfoMenuView& view, QSize size)
{
    view.resize(size);
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    view.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    if (const QString folder = qEnvironmentVariable("QUARRY_SCREENSHOTS"); !folder.isEmpty())
        image.save(folder + u"/info-view-%1.png"_s.arg(size.width()));
    return image;
}

/// The columns between the first and the last one that hold white, in rows of the text from 0.
std::pair<int, int> whiteSpan(const QImage& image, const QFont& font, int row)
{
    const double height = QFontMetricsF(font).lineSpacing();
    const QRect rows(0, int(4 + height * row), image.width(), int(height));
    std::pair<int, int> span(image.width(), -1);
    for (int x = 0; x < image.width(); ++x) {
        if (pixelsLike(Qt::white, image, QRect(x, rows.top(), 1, rows.height()), 60) > 0)
            span = {std::min(span.first, x), x};
    }
    return span;
}

TEST(InfoMenuView, TakesTheSizeOfItsTextAndKeepsItWithoutText)
{
    InfoMenuView view;
    const QFontMetricsF metrics(view.font());
    const QString heading = u"New Results and a heading that is the longest"_s;
    view.setText({heading, {line(u"3 new: "_s, u"tea"_s), line(u"1 new: "_s, u"a"_s)}});
    const QSize expected(int(std::ceil(metrics.horizontalAdvance(heading))) + 4,
                         int(std::ceil(metrics.lineSpacing() * 3)) + 8);
    EXPECT_NEAR(view.sizeHint().width(), expected.width(), 1);
    EXPECT_EQ(view.sizeHint().height(), expected.height());
    EXPECT_EQ(view.size(), view.sizeHint());
    EXPECT_EQ(view.widthForWholeText(), view.sizeHint().width() + 24);
    EXPECT_EQ(view.accessibleName(), heading + u"\n3 new: tea\n1 new: a"_s);
    const QSize before = view.size();
    view.setText({});
    EXPECT_EQ(view.size(), before);
    view.setText({heading, {line(QString(), u"two\nrows"_s)}});
    EXPECT_EQ(view.size().height(), expected.height()) << "a line end inside a title begins a row";
}

TEST(InfoMenuView, CentersAndUnderlinesTheHeadingAndSlantsTitles)
{
    InfoMenuView view;
    const QString bars = u"lllllllll"_s;
    view.setText({u"News"_s, {line(bars, QString()), line(QString(), bars)}});
    const QImage image = painted(view, {400, view.sizeHint().height()});
    const auto [left, right] = whiteSpan(image, view.font(), 0);
    EXPECT_NEAR(left + right, 400, 6) << "in the middle";
    const int underline = int(4 + QFontMetricsF(view.font()).ascent() + QFontMetricsF(view.font()).underlinePos());
    EXPECT_GE(pixelsLike(Qt::white, image, QRect(left, underline - 1, right - left, 4), 60), right - left - 2);

    const auto upright = whiteSpan(image, view.font(), 1);
    const auto slanted = whiteSpan(image, view.font(), 2);
    EXPECT_NEAR(upright.first, 14, 3);
    const double lean = 0.15 * QFontMetricsF(view.font()).boundingRect(bars).height();
    EXPECT_NEAR((slanted.second - slanted.first) - (upright.second - upright.first), lean, 1.6);

    // The bubble behind it is inset, its corners are round, and it gets lighter upwards.
    for (const QPoint outside : {QPoint(200, 0), QPoint(2, 20), QPoint(5, 3), QPoint(394, image.height() - 4)})
        EXPECT_EQ(image.pixelColor(outside), QColor(Qt::black)) << outside.x();
    EXPECT_LT(image.pixelColor(380, image.height() - 8).red() + 40, image.pixelColor(380, 8).red());
}

TEST(InfoMenuView, CutsAtTheTailWhatDoesNotFit)
{
    InfoMenuView view;
    const QString title(200, u'W');
    view.setText({u"News"_s, {line(u"3 new: "_s, title), line(title, title)}});
    const QImage image = painted(view, {200, view.sizeHint().height()});
    for (const int row : {1, 2}) {
        const auto [left, right] = whiteSpan(image, view.font(), row);
        EXPECT_LE(right, 200 - 14 + 1);
        EXPECT_GT(right, 150) << "the space is used";
    }
    view.setText({u"News"_s, {line(u"3 new: "_s, u"tea"_s)}});
    EXPECT_FALSE(painted(view, {1, 1}).isNull());
}

} // namespace
