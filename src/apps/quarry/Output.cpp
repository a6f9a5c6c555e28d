#include "apps/quarry/Output.h"

#include "platform/Terminal.h"
#include "text/Controls.h"

#include <QDateTime>

#include <cstdio>

namespace quarry {

namespace {

constexpr qsizetype ShortIdLength = 8;

QString styled(const QString& text, const char* code)
{
    static const bool on = isTerminal(stdout) && qEnvironmentVariableIsEmpty("NO_COLOR");
    if (!on)
        return text;
    return QStringLiteral("\x1b[%1m").arg(QLatin1String(code)) + text + QStringLiteral("\x1b[0m");
}

void write(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

} // namespace

QString shown(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        if (c == u'\n' || c == u'\r' || c == u'\t' || c == QChar(0x2028) || c == QChar(0x2029) || c == QChar(0x85))
            out += u' ';
        else if (!isControl(c.unicode()) && !isLayoutMark(c.unicode()))
            out += c;
    }
    return out.simplified();
}

QString shownWithin(const QString& text, qsizetype length)
{
    QString line = shown(text);
    if (line.size() <= length)
        return line;
    line.truncate(length - 1);
    if (line.back().isHighSurrogate())
        line.chop(1);
    return line.trimmed() + QChar(0x2026);
}

QString shownTime(std::optional<Date> date)
{
    if (!date || *date == Date::reference())
        return QStringLiteral("never");
    return QDateTime::fromMSecsSinceEpoch(qint64(date->unixSeconds() * 1000.0)).toString(u"yyyy-MM-dd HH:mm");
}

QString counted(qint64 count, const QString& noun)
{
    QString word = noun;
    if (count != 1 && noun.endsWith(u'y'))
        word = noun.chopped(1) + QStringLiteral("ies");
    else if (count != 1)
        word += u's';
    return QString::number(count) + u' ' + word;
}

QString shortId(const QString& uuid)
{
    return shown(uuid).left(ShortIdLength);
}

QString strong(const QString& text)
{
    return styled(text, "1");
}

QString faint(const QString& text)
{
    return styled(text, "2");
}

void writeOut(const QString& text)
{
    write(stdout, text);
}

void writeError(const QString& text)
{
    std::fflush(stdout); // in a log that takes both, what was said first stands first
    write(stderr, text);
}

bool finishOut()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

} // namespace quarry
