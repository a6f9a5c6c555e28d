#include "session/ListingLoader.h"

#include "model/ResultSearch.h"

#include <utility>

namespace quarry {

namespace {

/// Sorted and filtered well within the time between two frames.
constexpr std::size_t AtOnce = 3000;

} // namespace

ListingLoader::ListingLoader(EventTimers& timers, Ready ready)
    : _timers(timers), _ready(std::move(ready)), _alive(std::make_shared<ListingLoader*>(this))
{
}

ListingLoader::~ListingLoader()
{
    if (_cancelled)
        *_cancelled = true;
    _worker.stop();
}

void ListingLoader::forget()
{
    retire(std::move(_sorted.listing));
    retire(std::move(_sorted.found));
    _sorted = {};
}

void ListingLoader::retire(ResultListing listing)
{
    if (listing.size() > AtOnce)
        _worker.add([kept = std::move(listing)] {});
}

void ListingLoader::load(Request request)
{
    if (_cancelled)
        *_cancelled = true;
    _cancelled = std::make_shared<ResultListing::Cancelled>(false);
    const std::uint64_t number = ++_number;
    if (request.expected <= qint64(AtOnce)) {
        forget();
        _isLoading = false;
        _ready(ResultListing::of(request.node, request.order, request.hidden).filtered(request.search));
        return;
    }
    _isLoading = true;
    // What changes in the tree makes new requests, which must not be answered from an older sort: only a search in
    // the very listing that is shown goes by what is kept.
    Sorted known = _sorted;
    if (known.node != request.node.get() || known.order != request.order || known.hidden != request.hidden)
        known = {};
    _worker.add([&timers = _timers, alive = std::weak_ptr<ListingLoader*>(_alive), cancelled = _cancelled, number,
                 request = std::move(request), known = std::move(known)]() mutable {
        if (!known.isKnown)
            known = {ResultListing::of(request.node, request.order, request.hidden, cancelled.get()),
                     true,
                     request.node.get(),
                     request.order,
                     request.hidden,
                     {},
                     {}};
        // While a word is being typed, each letter is looked for among what the letters before it found.
        const bool isNarrower = ResultSearch(request.search).isWithin(ResultSearch(known.search));
        ResultListing found = (isNarrower ? known.found : known.listing).filtered(request.search, cancelled.get());
        if (*cancelled)
            return;
        known.found = found;
        known.search = request.search;
        timers.post([alive, number, known = std::move(known), found = std::move(found)]() mutable {
            if (const std::shared_ptr<ListingLoader*> loader = alive.lock())
                (*loader)->deliver(number, std::move(known), std::move(found));
        });
    });
}

void ListingLoader::deliver(std::uint64_t number, Sorted sorted, ResultListing listing)
{
    if (number != _number) {
        retire(std::move(sorted.listing));
        retire(std::move(sorted.found));
        retire(std::move(listing));
        return;
    }
    forget();
    _sorted = std::move(sorted);
    _isLoading = false;
    _ready(std::move(listing));
}

} // namespace quarry
