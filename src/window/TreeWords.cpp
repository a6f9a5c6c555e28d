#include "window/TreeWords.h"

#include "text/LocalisedFormat.h"

#include <QDateTime>
#include <QLocale>
#include <QTextDocument>

namespace quarry {

namespace {

QStringList statesOf(const StringTable& texts, const TreeRow& row)
{
    QStringList states;
    if (row.isPaused)
        states.append(texts.text(QStringLiteral("209_Paused")));
    if (row.isUpdating)
        states.append(texts.text(QStringLiteral("209_Updating")));
    return states;
}

QString lastRefresh(const StringTable& texts, Date date)
{
    if (date == Date::reference())
        return texts.text(QStringLiteral("209_Never refreshed"));
    const QDateTime when = QDateTime::fromMSecsSinceEpoch(qint64(date.unixSeconds() * 1000.0));
    return filledFormat(texts.text(QStringLiteral("209_Refreshed")), {QLocale().toString(when, QLocale::ShortFormat)});
}

} // namespace

QString spokenRow(const StringTable& texts, const TreeRow& row)
{
    QStringList words = {row.title};
    if (row.counts.unread > 0)
        words.append(filledFormat(texts.text(QStringLiteral("209_Unread")), {QLocale().toString(row.counts.unread)}));
    return (words + statesOf(texts, row)).join(QStringLiteral(", "));
}

QString tipOfRow(const StringTable& texts, const TreeRow& row)
{
    const QLocale locale;
    QStringList lines = {row.title, statesOf(texts, row).join(QStringLiteral(", "))};
    if (row.isFolder)
        lines.append(filledFormat(texts.text(QStringLiteral("209_Queries")), {locale.toString(row.queries)}));
    lines.append(filledFormat(texts.text(QStringLiteral("209_Results")),
                              {locale.toString(row.counts.results), locale.toString(row.counts.unread)}));
    if (!row.isFolder && row.updated)
        lines.append(lastRefresh(texts, *row.updated));
    lines.removeAll(QString());
    return Qt::convertFromPlainText(lines.join(u'\n')); // A title may look like markup.
}

} // namespace quarry
