#include "window/ChartsPane.h"

#include "text/LocalisedFormat.h"
#include "window/DayChart.h"
#include "window/ShareChart.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

namespace quarry {

ChartsPane::ChartsPane(EventTimers& timers, Clock& clock, const StringTable& texts, QWidget* parent)
    : QDockWidget(texts.text(QStringLiteral("220_Title")), parent), _texts(texts),
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
}

void ChartsPane::load()
{
    _loader.load(_node);
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
