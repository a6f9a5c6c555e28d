#include "window/ChartsPane.h"

#include "text/LocalisedFormat.h"
#include "window/DayChart.h"
#include "window/ShareChart.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

namespace quarry {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds ShortestWait = 1s;
/// A machine that sleeps, or a clock that is set, does not make the new day wait longer than that.
constexpr std::chrono::milliseconds LongestWait = 10min;

} // namespace

ChartsPane::ChartsPane(EventTimers& timers, Clock& clock, const StringTable& texts, QWidget* parent)
    : QDockWidget(texts.text(QStringLiteral("220_Title")), parent), _timers(timers), _clock(clock), _texts(texts),
      _loader(timers, clock, [this](const ResultChart& chart) { take(chart); })
{
    setObjectName(QStringLiteral("charts"));
    auto* const content = new QWidget(this);
    _text = new QLabel(content);
    _text->setTextFormat(Qt::PlainText);
    _text->setWordWrap(true);
    _days = new DayChart(texts, content);
    _services = new ShareChart(texts, content);
    auto* const charts = new QHBoxLayout;
    charts->addWidget(_days, 3);
    charts->addWidget(_services, 2, Qt::AlignTop);
    auto* const column = new QVBoxLayout(content);
    column->addWidget(_text);
    column->addLayout(charts, 1);
    setWidget(content);
    connect(_days, &DayChart::dayReached, this,
            [this](const QString& text) { _text->setText(text.isEmpty() ? _summary : text); });
}

void ChartsPane::show(const QueryCorePtr& node, const QString& name)
{
    _node = node;
    _name = name;
    if (isVisible())
        load();
}

void ChartsPane::showEvent(QShowEvent* event)
{
    QDockWidget::showEvent(event);
    load();
    if (!std::exchange(_isWaiting, true))
        waitForMidnight();
}

void ChartsPane::load()
{
    _today = now().date();
    _loader.load(_node);
}

QDateTime ChartsPane::now() const
{
    return QDateTime::fromMSecsSinceEpoch(qint64(_clock.now().unixSeconds() * 1000.0));
}

void ChartsPane::waitForMidnight()
{
    const qint64 left = now().msecsTo(now().date().addDays(1).startOfDay());
    const std::chrono::milliseconds wait = std::clamp(std::chrono::milliseconds(left), ShortestWait, LongestWait);
    _timers.after(wait, [pane = QPointer<ChartsPane>(this)] {
        if (!pane)
            return;
        pane->_isWaiting = pane->isVisible();
        if (!pane->_isWaiting)
            return; // Until it is shown again.
        if (pane->now().date() != pane->_today)
            pane->load();
        pane->waitForMidnight();
    });
}

void ChartsPane::take(const ResultChart& chart)
{
    _summary = filledFormat(_texts.text(QStringLiteral("220_Summary")),
                            {_name, QLocale().toString(chart.resultsOfDays()),
                             QLocale().toString(ResultChart::DayCount), QLocale().toString(chart.resultsOfServices())});
    _text->setText(_summary);
    _days->show(chart);
    _services->show(chart);
}

} // namespace quarry
