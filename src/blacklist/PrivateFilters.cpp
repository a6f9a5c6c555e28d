#include "blacklist/PrivateFilters.h"

#include "blacklist/BlacklistArchive.h"

namespace quarry {

bool PrivateFilters::testString(const Object& filter, const QString& address, Logger& log)
{
    return filter && matcherOf(filter)->isAddressFiltered(address, log);
}

std::shared_ptr<const BlacklistMatcher> PrivateFilters::matcherOf(const Object& filter)
{
    const std::lock_guard lock(_mutex);
    if (const auto known = _matchers.find(filter); known != _matchers.end())
        return known->second;
    std::erase_if(_matchers, [](const auto& entry) { return entry.first.expired(); });
    const QList<BlacklistRule> rules{blacklistRuleOf(*filter).value_or(BlacklistRule())};
    return _matchers[filter] = std::make_shared<const BlacklistMatcher>(rules, BlacklistMatcher::Which::All);
}

} // namespace quarry
