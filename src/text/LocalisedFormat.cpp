#include "text/LocalisedFormat.h"

#include <QRegularExpression>

namespace quarry {

namespace {

/// One placeholder; its captures are position, precision, kind.
const QRegularExpression& placeholder()
{
    static const QRegularExpression expression(
        QStringLiteral("%(?:([1-9][0-9]?)\\$)?(?:\\.([0-9]))?(?:(@)|l{0,2}([diu])|l?(f)|(%))"));
    return expression;
}

enum Capture { Position = 1, Precision, Text, Integer, Real, Percent };

bool has(const QRegularExpressionMatch& match, Capture part)
{
    return match.hasCaptured(part);
}

/// Hands each placeholder but "%%" to `use` with the number of its argument, from 0.
template <typename Use>
void forEachPlaceholder(const QString& format, const Use& use)
{
    std::size_t next = 0;
    for (auto matches = placeholder().globalMatch(format); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        if (has(match, Percent))
            use(match, std::size_t{0});
        else if (has(match, Position))
            use(match, match.captured(Position).toUInt() - std::size_t{1});
        else
            use(match, next++);
    }
}

QString filling(const QRegularExpressionMatch& match, const FormatArgument* argument)
{
    if (has(match, Percent))
        return QStringLiteral("%");
    if (const auto* text = std::get_if<QString>(argument); text && has(match, Text))
        return *text;
    if (const auto* number = std::get_if<qint64>(argument); number && has(match, Integer))
        return QString::number(*number);
    if (const auto* real = std::get_if<double>(argument); real && has(match, Real))
        return QString::number(*real, 'f', has(match, Precision) ? match.captured(Precision).toInt() : 6);
    return match.captured();
}

} // namespace

QString filledFormat(const QString& format, const std::vector<FormatArgument>& arguments)
{
    QString filled;
    qsizetype done = 0;
    forEachPlaceholder(format, [&](const QRegularExpressionMatch& match, std::size_t number) {
        filled += QStringView(format).mid(done, match.capturedStart() - done);
        filled += filling(match, number < arguments.size() ? &arguments[number] : nullptr);
        done = match.capturedEnd();
    });
    return filled.append(QStringView(format).mid(done));
}

QStringList placeholdersOf(const QString& format)
{
    QStringList found;
    forEachPlaceholder(format, [&](const QRegularExpressionMatch& match, std::size_t number) {
        if (has(match, Percent))
            return;
        const QLatin1Char kind(has(match, Text) ? '@' : has(match, Integer) ? 'd' : 'f');
        found.append(QString::number(number + 1) + kind);
    });
    found.sort();
    return found;
}

} // namespace quarry
