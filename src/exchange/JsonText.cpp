#include "exchange/JsonText.h"

#include "text/Controls.h"

#include <QJsonDocument>

namespace quarry {

namespace {

QString escaped(const QByteArray& json)
{
    const QString plain = QString::fromUtf8(json);
    QString out;
    out.reserve(plain.size());
    for (const QChar c : plain) {
        if (c != u'\n' && (isControl(c.unicode()) || isLayoutMark(c.unicode())))
            out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            out += c;
    }
    return out;
}

} // namespace

QJsonValue jsonTime(std::optional<Date> date)
{
    if (!date || *date == Date::reference())
        return QJsonValue::Null;
    return date->isoText();
}

QString jsonText(const QJsonObject& object)
{
    return escaped(QJsonDocument(object).toJson(QJsonDocument::Indented)).trimmed();
}

QString jsonLine(const QJsonObject& object)
{
    return escaped(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace quarry
