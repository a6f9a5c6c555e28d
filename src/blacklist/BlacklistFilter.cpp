#include "blacklist/BlacklistFilter.h"

namespace quarry {

BlacklistFilterPtr BlacklistFilter::initWithRule(const std::optional<QString>& rule, qint64 type, bool state,
                                                 bool caseSensitive)
{
    auto filter = std::make_shared<BlacklistFilter>();
    filter->setRule(rule);
    filter->setType(type);
    filter->setState(state);
    filter->setCaseSensitive(caseSensitive);
    return filter;
}

bool BlacklistFilter::testString(const QString& address, Logger& log) const
{
    return testString(address, isCaseSensitive() ? Qt::CaseSensitive : Qt::CaseInsensitive, log);
}

bool BlacklistFilter::testString(const QString& address, Qt::CaseSensitivity option, Logger& log) const
{
    return testRule(_fields, address, option, log);
}

QString BlacklistFilter::description() const
{
    const QString object = QStringLiteral("<BlacklistFilter: 0x%1>").arg(reinterpret_cast<quintptr>(this), 0, 16);
    return QStringLiteral("Filter (%1): %2, %3, %4")
        .arg(object, QString::number(int(isCaseSensitive())), QString::number(int(state())),
             rule().value_or(QStringLiteral("(null)")));
}

} // namespace quarry
