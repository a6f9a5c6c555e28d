#pragma once

#include "platform/EventTimers.h"
#include "platform/Worker.h"
#include "session/ResultListing.h"

#include <functional>
#include <memory>

namespace quarry {

/// Makes listings for a screen: short ones at once, long ones on a thread of its own, where a newer request ends the
/// older one. Main thread only.
class ListingLoader final {
public:
    struct Request {
        QueryCorePtr node; ///< None: an empty listing.
        std::int32_t order = 0;
        bool hidden = false;
        QString search;
        qint64 expected = 0; ///< About how many results there are: decides whether it is done at once.
    };
    using Ready = std::function<void(ResultListing listing)>;

    /// `timers` must outlive the object. `ready` gets the listing of the latest request, within load() or later.
    ListingLoader(EventTimers& timers, Ready ready);
    ~ListingLoader();

    void load(Request request);
    /// The tree changed: what was sorted before is not to be searched again.
    void forget();
    /// Lets go of a listing that nobody shows any more, a long one on the other thread.
    void retire(ResultListing listing);
    [[nodiscard]] bool isLoading() const { return _isLoading; }

private:
    /// The sorted listing before the search, kept while only the search changes, and what the latest search found.
    struct Sorted {
        ResultListing listing;
        bool isKnown = false;
        const QueryCore* node = nullptr;
        std::int32_t order = 0;
        bool hidden = false;
        ResultListing found;
        QString search;
    };

    void deliver(std::uint64_t number, Sorted sorted, ResultListing listing);

    EventTimers& _timers;
    Ready _ready;
    std::shared_ptr<ListingLoader*> _alive; ///< What is posted finds out whether this object is still there.
    std::shared_ptr<ResultListing::Cancelled> _cancelled;
    std::uint64_t _number = 0;
    bool _isLoading = false;
    Sorted _sorted;
    Worker _worker;
};

} // namespace quarry
