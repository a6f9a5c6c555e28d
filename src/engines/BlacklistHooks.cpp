#include "engines/BlacklistHooks.h"

namespace quarry {

MergeHooks blacklistHooks(BlacklistStore& shared, PrivateFilters& own, Logger& log)
{
    MergeHooks hooks;
    hooks.isBlackListed = [&shared, &log](const ResultRecord& record) {
        const std::optional<QString> address = record.urlText();
        return address && shared.isAddressFiltered(*address, log);
    };
    hooks.testString = [&own, &log](const FilterObject& filter, const QString& address) {
        return own.testString(filter, address, log);
    };
    return hooks;
}

} // namespace quarry
