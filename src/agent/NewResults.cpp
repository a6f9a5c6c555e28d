#include "agent/NewResults.h"

#include "platform/Memory.h"

#include <utility>

namespace quarry {

void DatabaseResults::look(std::function<void()> seen)
{
    _background([this, seen = std::move(seen)]() -> std::function<void()> {
        std::optional<DatabaseNews> found = _reader.read();
        if (!found)
            return seen;
        // The tree that is gone again may have been larger than all the rest of the agent.
        returnFreeMemory();
        return [this, seen, found = std::move(found)] {
            _news = *found;
            seen();
        };
    });
}

} // namespace quarry
