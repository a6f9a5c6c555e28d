#include "agent/ui/InfoMenuView.h"

#include <QEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace quarry {

namespace {

constexpr QColor Start(58, 87, 247);
constexpr QColor Outline(47, 73, 236);
constexpr double Highlight = 0.4;
constexpr double Radius = 9;
/// Sideways by height.
constexpr double Obliqueness = 0.15;

/// The distance of the bubble from the frame, and of the text from the bubble.
constexpr QMarginsF AroundBubble(4, 2, 4, 2);
constexpr QMarginsF AroundText(10, 2, 10, 2);
/// What the frame adds to the text.
constexpr QSize FrameExtra(4, 8);

QColor highlighted(const QColor& color)
{
    const auto lighter = [](float part) { return part + (1.0F - part) * static_cast<float>(Highlight); };
    return QColor::fromRgbF(lighter(color.redF()), lighter(color.greenF()), lighter(color.blueF()));
}

} // namespace

InfoMenuView::InfoMenuView(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::Fixed);
}

void InfoMenuView::setText(const InfoText& text)
{
    if (text.heading.isEmpty() && text.lines.empty())
        return;
    _rows.assign(1, Row());
    add({text.heading, true, false});
    for (const InfoText::Line& line : text.lines) {
        add({line.text.chopped(line.titleLength), false, false});
        add({line.text.last(line.titleLength), false, true});
    }
    setAccessibleName(text.heading + text.body());
    fitFrame();
}

void InfoMenuView::add(const Run& run)
{
    const QStringList pieces = run.text.split(u'\n');
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        if (i > 0)
            _rows.emplace_back();
        if (!pieces[i].isEmpty())
            _rows.back().push_back({pieces[i], run.isHeading, run.isTitle});
    }
}

void InfoMenuView::fitFrame()
{
    qreal width = 0;
    for (const Row& row : _rows)
        width = std::max(width, widthOf(row));
    const qreal height = QFontMetricsF(font()).lineSpacing() * static_cast<qreal>(_rows.size());
    _textSize = QSizeF(std::ceil(width), std::ceil(height)).toSize();
    _frame = _textSize + FrameExtra;
    resize(_frame);
    updateGeometry();
    update();
}

int InfoMenuView::widthForWholeText() const
{
    const QMarginsF around = AroundBubble + AroundText;
    return _textSize.width() + static_cast<int>(around.left() + around.right());
}

QFont InfoMenuView::fontOf(const Run& run) const
{
    QFont font = this->font();
    font.setUnderline(run.isHeading);
    return font;
}

qreal InfoMenuView::widthOf(const Run& run) const
{
    const QFontMetricsF metrics(fontOf(run));
    // What leans over at the end of a title.
    return metrics.horizontalAdvance(run.text) + (run.isTitle ? Obliqueness * metrics.ascent() : 0);
}

qreal InfoMenuView::widthOf(const Row& row) const
{
    qreal width = 0;
    for (const Run& run : row)
        width += widthOf(run);
    return width;
}

void InfoMenuView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange && !_rows.empty())
        fitFrame();
    QWidget::changeEvent(event);
}

void InfoMenuView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawBubble(painter);
    painter.setPen(Qt::white);
    const QRectF text = QRectF(rect()) - AroundBubble - AroundText;
    const qreal height = QFontMetricsF(font()).lineSpacing();
    for (std::size_t i = 0; i < _rows.size(); ++i)
        drawRow(painter, _rows[i],
                QRectF(text.left(), text.top() + height * static_cast<qreal>(i), text.width(), height));
}

void InfoMenuView::drawBubble(QPainter& painter) const
{
    const QRectF bubble = QRectF(rect()) - AroundBubble;
    QPainterPath shape;
    shape.addRoundedRect(bubble, Radius, Radius);
    // Upwards: the plain colour lies at the bottom.
    QLinearGradient gradient(bubble.bottomLeft(), bubble.topLeft());
    gradient.setColorAt(0, Start);
    gradient.setColorAt(1, highlighted(Start));
    painter.fillPath(shape, gradient);
    painter.strokePath(shape, QPen(Outline, 1));
}

void InfoMenuView::drawRow(QPainter& painter, const Row& row, const QRectF& place) const
{
    QPointF baseline(place.left(), place.top() + QFontMetricsF(font()).ascent());
    if (!row.empty() && row.front().isHeading)
        baseline.rx() += std::max(0.0, (place.width() - widthOf(row)) / 2);
    for (const Run& run : row) {
        const qreal space = place.right() - baseline.x();
        const bool fits = widthOf(run) <= space;
        Run shown = run;
        if (!fits)
            shown.text = QFontMetricsF(fontOf(run)).elidedText(run.text, Qt::ElideRight, space);
        drawRun(painter, shown, baseline);
        if (!fits)
            return;
        baseline.rx() += widthOf(run);
    }
}

void InfoMenuView::drawRun(QPainter& painter, const Run& run, QPointF baseline) const
{
    painter.save();
    painter.setFont(fontOf(run));
    painter.translate(baseline);
    // Fonts know italic, which is another drawing of the letters; this is the same one, leaning.
    if (run.isTitle)
        painter.shear(-Obliqueness, 0);
    painter.drawText(QPointF(), run.text);
    painter.restore();
}

} // namespace quarry
