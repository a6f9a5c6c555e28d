#include "window/DayChart.h"

#include "text/LocalisedFormat.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QToolTip>

#include <algorithm>

namespace quarry {

namespace {

constexpr int Margin = 6;

/// In the middle of the line, for QPainter; the sides are those of a text from left to right.
int alignedIn(const QWidget& widget, Qt::Alignment side)
{
    return static_cast<int>((QStyle::visualAlignment(widget.layoutDirection(), side) | Qt::AlignVCenter).toInt());
}
constexpr int DaysBetweenDates = 7;

/// The next number above that people like on a scale.
qint64 topOfScale(qint64 most)
{
    qint64 step = 1;
    while (step * 10 < most)
        step *= 10;
    for (const qint64 times : {1, 2, 5}) {
        if (step * times >= most)
            return step * times;
    }
    return step * 10;
}

} // namespace

DayChart::DayChart(const StringTable& texts, QWidget* parent) : QWidget(parent), _texts(texts)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(texts.text(QStringLiteral("220_Days")));
}

QSize DayChart::sizeHint() const
{
    constexpr int Width = 420;
    constexpr int Lines = 8;
    return {Width, fontMetrics().height() * Lines};
}

void DayChart::show(const ResultChart& chart)
{
    _chart = chart;
    if (_day >= _chart.days.size())
        setDay(-1);
    QStringList numbers;
    for (const ResultChart::Day& day : _chart.days)
        numbers.append(dayText(day));
    setAccessibleDescription(numbers.join(u'\n'));
    update();
}

QString DayChart::dayText(const ResultChart::Day& day) const
{
    return filledFormat(_texts.text(QStringLiteral("220_Day")),
                        {QLocale().toString(day.date, QLocale::LongFormat), QLocale().toString(day.results)});
}

QRect DayChart::plot() const
{
    const QString top = QLocale().toString(topOfScale(_chart.most()));
    const int scale = fontMetrics().horizontalAdvance(top) + Margin;
    return QRect(QPoint(Margin + scale, Margin + fontMetrics().height() / 2),
                 QPoint(width() - Margin, height() - Margin - fontMetrics().height()));
}

QRect DayChart::column(qsizetype day) const
{
    const QRect area = plot();
    const auto count = std::max<qsizetype>(1, _chart.days.size());
    const int left = static_cast<int>(day * area.width() / count);
    const int right = static_cast<int>((day + 1) * area.width() / count);
    const QRect unmirrored(area.left() + left, area.top(), right - left, area.height());
    return QStyle::visualRect(layoutDirection(), rect(), unmirrored);
}

qsizetype DayChart::dayAt(const QPoint& point) const
{
    for (qsizetype day = 0; day < _chart.days.size(); ++day) {
        if (column(day).contains(point))
            return day;
    }
    return -1;
}

void DayChart::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (_chart.days.isEmpty())
        return;
    paintScale(painter);
    for (qsizetype day = 0; day < _chart.days.size(); ++day)
        paintDay(painter, day);
    if (hasFocus() && _day < 0) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void DayChart::paintScale(QPainter& painter) const
{
    const QRect area = plot();
    const auto mirrored = [this](const QRect& part) { return QStyle::visualRect(layoutDirection(), rect(), part); };
    const qint64 top = topOfScale(_chart.most());
    const int line = fontMetrics().height();
    for (const qint64 value : {qint64(0), top}) {
        const int y = value == 0 ? area.bottom() : area.top();
        painter.setPen(palette().color(QPalette::Mid));
        const QRect rule = mirrored(QRect(area.left(), y, area.width(), 1));
        painter.drawLine(rule.topLeft(), rule.topRight());
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(mirrored(QRect(Margin, y - line / 2, area.left() - 2 * Margin, line)),
                         alignedIn(*this, Qt::AlignRight), QLocale().toString(value));
    }
    // Counted from today, so that its own date always stands there.
    for (qsizetype day = _chart.days.size() - 1; day >= 0; day -= DaysBetweenDates) {
        const QString text =
            QLocale().toString(_chart.days.at(day).date, _texts.text(QStringLiteral("220_Date format")));
        QRect place(0, area.bottom() + 2, fontMetrics().horizontalAdvance(text) + 2, line);
        place.moveCenter({column(day).center().x(), place.center().y()});
        place.moveLeft(std::clamp(place.left(), 0, std::max(0, width() - place.width())));
        painter.drawText(place, Qt::AlignCenter, text);
    }
}

void DayChart::paintDay(QPainter& painter, qsizetype day) const
{
    const QRect whole = column(day);
    if (day == _day)
        painter.fillRect(whole, palette().color(QPalette::AlternateBase));
    const qint64 results = _chart.days.at(day).results;
    if (results == 0)
        return;
    const int gap = whole.width() > 4 ? 1 : 0;
    // Never so low that it cannot be seen.
    const int height =
        std::max(2, static_cast<int>(double(whole.height()) * double(results) / double(topOfScale(_chart.most()))));
    QColor color = palette().color(QPalette::Highlight);
    if (day == _day)
        color = palette().color(QPalette::WindowText);
    painter.fillRect(QRect(whole.left() + gap, whole.bottom() - height + 1, whole.width() - 2 * gap, height), color);
}

void DayChart::setDay(qsizetype day)
{
    if (std::exchange(_day, day) == day)
        return;
    update();
    Q_EMIT dayReached(day < 0 ? QString() : dayText(_chart.days.at(day)));
}

void DayChart::keyPressEvent(QKeyEvent* event)
{
    const qsizetype last = _chart.days.size() - 1;
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    const qsizetype now =
        _day < 0 ? last + (event->key() == (isRightToLeft ? Qt::Key_Right : Qt::Key_Left) ? 1 : 0) : _day;
    qsizetype next = -1;
    switch (event->key()) {
    case Qt::Key_Left:
        next = now + (isRightToLeft ? 1 : -1);
        break;
    case Qt::Key_Right:
        next = now + (isRightToLeft ? -1 : 1);
        break;
    case Qt::Key_Home:
        next = 0;
        break;
    case Qt::Key_End:
        next = last;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    if (last >= 0)
        setDay(std::clamp<qsizetype>(next, 0, last));
}

void DayChart::focusOutEvent(QFocusEvent* event)
{
    setDay(-1);
    QWidget::focusOutEvent(event);
}

bool DayChart::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* const help = static_cast<QHelpEvent*>(event);
    const qsizetype day = dayAt(help->pos());
    if (day >= 0)
        QToolTip::showText(help->globalPos(), dayText(_chart.days.at(day)), this, column(day));
    else
        QToolTip::hideText();
    return true;
}

} // namespace quarry
