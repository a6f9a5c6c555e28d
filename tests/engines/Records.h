#pragma once

#include "model/ResultRecord.h"

namespace quarry {

/// A record as a service brings it: an address and a title.
inline ResultRecord linkTo(const QString& address, const QString& title = QStringLiteral("title"))
{
    return ResultRecord().withUrl(Url::fromStored(address)).withTitle(title).withUserSaw(false);
}

inline ResultList linksTo(const QStringList& addresses)
{
    ResultList links;
    for (const QString& address : addresses)
        links.append(linkTo(address));
    return links;
}

inline QStringList addressesOf(const ResultList& records)
{
    QStringList addresses;
    for (const ResultRecord& record : records)
        addresses.append(record.urlText().value_or(QStringLiteral("-")));
    return addresses;
}

} // namespace quarry
