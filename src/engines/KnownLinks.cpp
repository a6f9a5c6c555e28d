#include "engines/KnownLinks.h"

#include <QStringBuilder>

namespace quarry {

QString KnownLinks::keyOf(const Url& address)
{
    if (address.host().isEmpty())
        return address.absoluteString();
    // No address without a host begins like this: after "//" it would go on with a host.
    const QStringView path = address.path().isEmpty() ? QStringView(u"/") : address.path();
    return QLatin1String("//") % address.host() % path;
}

KnownLinks::KnownLinks(const ResultList& records)
{
    _keys.reserve(records.size());
    for (const ResultRecord& record : records) {
        if (const std::optional<Url> address = record.url())
            add(keyOf(*address));
    }
}

} // namespace quarry
