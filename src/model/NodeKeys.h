#pragma once

#include <QString>

#include <array>
#include <cstdint>

namespace quarry {

/// The named entries of a stored node, in the order they are written.
enum class NodeKey : std::uint8_t {
    Title,
    Highlight,
    HighlightState,
    Query,
    LastUpdate,
    Results,
    Checksum,
    ExcludedDomains,
    Uuid,
    Parent,
    Childs,
    HiddenResults,
    Filters,
    CombinedQueries,
    IsAdvanced,
    WordRestriction,
    WebsiteRestriction,
    UrlExpression,
    IsFolder,
    KeyPath,
    IsPaused,
    SubscribesToBlacklist,
};
inline constexpr std::size_t NodeKeyCount = 22;

inline constexpr std::array<QStringView, NodeKeyCount> NodeKeyNames = {
    u"queryTitleKey",
    u"queryHighlighKey",
    u"queryHighlighStateKey",
    u"queryStringKey",
    u"updateKey",
    u"resultKey",
    u"checksumKey",
    u"excludedDomainsKey",
    u"queryUUIDKey",
    u"queryParentUUIDKey",
    u"queryChildsKey",
    u"hiddenResultKey",
    u"filtersResultKey",
    u"combinedQueryListKey",
    u"advancedSearchKey",
    u"advancedWordRestrictionKey",
    u"advancedWebsiteRestrictionKey",
    u"advancedUrlRegexpKey",
    u"queryIsGroupKey",
    u"queryKeypathKey",
    u"queryIsPausedKey",
    u"suscribeToBlacklistKey",
};

} // namespace quarry
