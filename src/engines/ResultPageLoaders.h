#pragma once

#include "engines/SearchServices.h"
#include "model/ResultRecord.h"
#include "platform/PageLoader.h"

#include <array>
#include <functional>
#include <mutex>

namespace quarry {

/// Picks the loader for the page behind a result. A service of the public network can name any address; nothing it
/// names may be read from this machine or the network around it. A service that is itself on such an address may name
/// its neighbours. Thread-safe as far as the loaders are.
class ResultPageLoaders final {
public:
    /// Whether a host is on private addresses only; may take seconds.
    using HostTest = std::function<bool(const QString& host)>;

    /// `publicOnly` refuses to connect to private addresses. The loaders must outlive it.
    ResultPageLoaders(PageLoader& anywhere, PageLoader& publicOnly, SearchServices services, HostTest isPrivateHost);

    /// For the page of a record, by the service that named it; a record that does not tell it counts as named by a
    /// public one.
    [[nodiscard]] PageLoader& loaderFor(const ResultRecord& record);

private:
    [[nodiscard]] bool isPrivate(SearchService service);

    struct Known {
        std::once_flag asked;
        bool isPrivate = false;
    };
    PageLoader& _anywhere;
    PageLoader& _publicOnly;
    const SearchServices _services;
    const HostTest _isPrivateHost;
    std::array<Known, AllSearchServices.size()> _known;
};

} // namespace quarry
