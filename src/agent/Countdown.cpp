#include "agent/Countdown.h"

#include "text/LocalisedFormat.h"
#include "updater/IntegerValue.h"

namespace quarry {

namespace {

constexpr double MinutesOfHour = 60.0;
constexpr double MinutesOfDay = 1440.0;

struct Shown {
    QString number;
    QString unit;
};

QString minutesUnit()
{
    return QStringLiteral("100_Minutes");
}

/// A translation may hold a number of its own for far dates. A table without the text yields the key, which begins with
/// a number and means nothing.
QString farText(const StringTable& texts)
{
    const QString key = QStringLiteral("100_Not determinated");
    return texts.contains(key) ? texts.text(key) : QString();
}

Shown shownTime(double minutes, const StringTable& texts)
{
    if (!(minutes < MinutesOfDay))
        return {farText(texts), {}};
    if (!(minutes >= 1.0)) // Also keeps what no integer holds away from the cast.
        return {};
    const auto whole = static_cast<qint64>(minutes);
    if (minutes < MinutesOfHour)
        return {QString::number(whole), texts.text(minutesUnit())};
    return {QString::number(whole / 60), texts.text(QStringLiteral("100_Hours"))};
}

} // namespace

QString countdownTitle(double secondsToGo, const StringTable& texts)
{
    Shown shown = shownTime(secondsToGo / 60.0, texts);
    if (integerValue(shown.number) < 1)
        shown = {QStringLiteral("1"), texts.text(minutesUnit())};
    return filledFormat(texts.text(QStringLiteral("100_Update menu string format")), {shown.number, shown.unit});
}

} // namespace quarry
