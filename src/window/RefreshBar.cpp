#include "window/RefreshBar.h"

#include "text/LocalisedFormat.h"
#include "window/HealthWords.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMap>
#include <QPainter>
#include <QProgressBar>
#include <QStyle>
#include <QToolButton>

namespace quarry {

namespace {

/// One line that ends in an ellipsis where there is no room for all of it; it does not widen the window.
class ElidedLabel final : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
        const Qt::Alignment side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft);
        style()->drawItemText(&painter, rect(), int((side | Qt::AlignVCenter).toInt()), palette(), isEnabled(), shown,
                              foregroundRole());
    }
};

} // namespace

RefreshBar::RefreshBar(const StringTable& texts, QAction* stop, QAction* health, QWidget* parent)
    : QWidget(parent), _texts(texts), _text(new ElidedLabel(this)), _progress(new QProgressBar(this)),
      _stop(new QToolButton(this)), _health(new QToolButton(this))
{
    constexpr int ProgressWidth = 160;
    _text->setTextFormat(Qt::PlainText);
    _text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    _progress->setMaximumWidth(ProgressWidth);
    _progress->setTextVisible(false);
    _progress->setAccessibleName(texts.text(QStringLiteral("205_Progress")));
    _stop->setDefaultAction(stop);
    _stop->setAutoRaise(true);
    const int side = style()->pixelMetric(QStyle::PM_SmallIconSize);
    _stop->setIconSize({side, side}); // It stands in the status bar, whose height is to stay as it is.
    _health->setDefaultAction(health);
    _health->setAutoRaise(true);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(_progress);
    layout->addWidget(_stop);
    layout->addWidget(_text, 1);
    layout->addWidget(_health);
    setMinimumHeight(std::max(_progress->sizeHint().height(), _stop->sizeHint().height()));
    _progress->hide();
    _stop->hide();
    _health->hide();
}

void RefreshBar::show(const RefreshState& state)
{
    _progress->setVisible(state.isRunning);
    _stop->setVisible(state.isRunning);
    _health->setVisible(!state.isRunning && !state.services.isEmpty());
    _progress->setRange(0, state.queries > 0 ? static_cast<int>(state.queries) : 0);
    _progress->setValue(static_cast<int>(state.done));
    const QString troubled = troubles(state);
    const QString text = state.isRunning ? runningText(state) : endText(state);
    _text->setText(
        troubled.isEmpty() ? text : filledFormat(_texts.text(QStringLiteral("221_With troubles")), {text, troubled}));
    QStringList faults = {_text->text()}; // All of it, should there be no room.
    faults += state.faults;
    for (auto service = state.serviceErrors.begin(); service != state.serviceErrors.end(); ++service)
        faults.append(service.key() + QLatin1String(": ") + service.value());
    _text->setToolTip(faults.join(u'\n'));
}

QString RefreshBar::troubles(const RefreshState& state) const
{
    QMap<ServiceVerdict, QStringList> services;
    for (auto service = state.services.begin(); service != state.services.end(); ++service) {
        if (*service != ServiceVerdict::Results && *service != ServiceVerdict::NothingFound)
            services[*service].append(searchServiceName(service.key()));
    }
    QStringList troubled;
    for (auto of = services.begin(); of != services.end(); ++of)
        troubled.append(filledFormat(_texts.text(QStringLiteral("221_Service and state")),
                                     {verdictWords(_texts, of.key()), of->join(QLatin1String(", "))}));
    return troubled.join(QLatin1String("; "));
}

QString RefreshBar::warning(const RefreshState& state) const
{
    const bool isLost = state.end == RefreshState::End::NotSaved || state.end == RefreshState::End::Failed;
    return isLost && !state.faults.isEmpty() ? endText(state) + u'\n' + state.faults.join(u'\n') : QString();
}

QString RefreshBar::runningText(const RefreshState& state) const
{
    if (state.isStopping)
        return _texts.text(QStringLiteral("205_Stopping"));
    if (state.queries == 0)
        return _texts.text(QStringLiteral("205_Starting"));
    const QString counted = filledFormat(_texts.text(QStringLiteral("205_Queries done")),
                                         {QLocale().toString(state.done), QLocale().toString(state.queries)});
    return state.service.isEmpty() ? counted
                                   : filledFormat(_texts.text(QStringLiteral("205_Asking")), {counted, state.service});
}

QString RefreshBar::endText(const RefreshState& state) const
{
    using End = RefreshState::End;
    switch (state.end) {
    case End::None:
        return {};
    case End::AllUpdated:
        return filledFormat(_texts.text(QStringLiteral("205_Done")),
                            {QLocale().toString(state.updated), QLocale().toString(state.added)});
    case End::SomeNotUpdated:
        return filledFormat(
            _texts.text(QStringLiteral("205_Done with failures")),
            {QLocale().toString(state.updated), QLocale().toString(state.added), QLocale().toString(state.failed)});
    case End::Stopped:
        return _texts.text(QStringLiteral("205_Stopped"));
    case End::AnotherRuns:
        return _texts.text(QStringLiteral("205_Another runs"));
    case End::NotSaved:
        return _texts.text(QStringLiteral("205_Not saved"));
    case End::Failed:
        break;
    }
    return _texts.text(QStringLiteral("205_Failed"));
}

} // namespace quarry
