#pragma once

#include <QString>

#include <array>
#include <cstddef>

namespace quarry {

/// The five services, in the order in which they are asked and their lists interleaved.
enum class SearchService { Google, Yahoo, Bing, Exalead, Ixquick };

inline constexpr std::array AllSearchServices = {SearchService::Google, SearchService::Yahoo, SearchService::Bing,
                                                 SearchService::Exalead, SearchService::Ixquick};

/// Its place in tables that have one row a service.
[[nodiscard]] constexpr std::size_t indexOf(SearchService service)
{
    return static_cast<std::size_t>(service);
}

/// "Google", "Yahoo", "Bing", "Exalead", "Ixquick": the name in files, options and messages.
[[nodiscard]] QString searchServiceName(SearchService service);

/// The identifier in result records: "1" Google, "2" Yahoo, "4" Ixquick, "5" Bing; empty for Exalead, which makes no
/// records.
[[nodiscard]] QString searchServiceIdentifier(SearchService service);

} // namespace quarry
