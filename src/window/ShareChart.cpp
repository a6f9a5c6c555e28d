#include "window/ShareChart.h"

#include "exchange/Names.h"
#include "text/LocalisedFormat.h"

#include <QLocale>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace quarry {

namespace {

constexpr int Margin = 6;

/// In the middle of the line, for QPainter; the sides are those of a text from left to right.
int alignedIn(const QWidget& widget, Qt::Alignment side)
{
    return static_cast<int>((QStyle::visualAlignment(widget.layoutDirection(), side) | Qt::AlignVCenter).toInt());
}

} // namespace

ShareChart::ShareChart(const StringTable& texts, QWidget* parent) : QWidget(parent), _texts(texts)
{
    setFocusPolicy(Qt::TabFocus); // For screen readers, which read what has the focus.
    setAccessibleName(texts.text(QStringLiteral("220_Services")));
}

QSize ShareChart::sizeHint() const
{
    constexpr int Width = 260;
    constexpr int UsualRows = 4;
    const int rows = std::max(UsualRows, static_cast<int>(_rows.size()));
    return {Width, rows * (fontMetrics().height() + Margin) + Margin};
}

void ShareChart::show(const ResultChart& chart)
{
    _rows.clear();
    QStringList lines;
    const qint64 all = chart.resultsOfServices();
    for (const ResultChart::Share& share : chart.services) {
        const double part = double(share.results) / double(all);
        Row row;
        row.name =
            share.engineId.isEmpty() ? _texts.text(QStringLiteral("220_No service")) : engineName(share.engineId);
        row.number = filledFormat(_texts.text(QStringLiteral("220_Share")),
                                  {QLocale().toString(share.results), QLocale().toString(part * 100.0, 'f', 0)});
        row.share = part;
        lines.append(filledFormat(_texts.text(QStringLiteral("220_Service and share")), {row.name, row.number}));
        _rows.append(row);
    }
    setAccessibleDescription(lines.join(u'\n'));
    updateGeometry();
    update();
}

void ShareChart::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const auto mirrored = [this](const QRect& part) { return QStyle::visualRect(layoutDirection(), rect(), part); };
    int names = 0;
    int numbers = 0;
    for (const Row& row : std::as_const(_rows)) {
        names = std::max(names, fontMetrics().horizontalAdvance(row.name));
        numbers = std::max(numbers, fontMetrics().horizontalAdvance(row.number));
    }
    const int line = fontMetrics().height();
    const int left = Margin + names + Margin;
    const int room = std::max(1, width() - left - Margin - numbers - Margin);
    int top = Margin;
    painter.setPen(palette().color(hasFocus() ? QPalette::Link : QPalette::WindowText));
    for (const Row& row : std::as_const(_rows)) {
        const int bar = std::max(1, static_cast<int>(row.share * room));
        painter.drawText(mirrored(QRect(Margin, top, names, line)), alignedIn(*this, Qt::AlignLeft), row.name);
        painter.fillRect(mirrored(QRect(left, top + 1, bar, line - 2)), palette().color(QPalette::Highlight));
        painter.drawText(mirrored(QRect(left + bar + Margin, top, numbers, line)), alignedIn(*this, Qt::AlignLeft),
                         row.number);
        top += line + Margin;
    }
}

} // namespace quarry
