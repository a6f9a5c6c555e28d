#pragma once

#include "archive/OpaqueObject.h"
#include "blacklist/BlacklistMatcher.h"

#include <map>
#include <memory>
#include <mutex>

namespace quarry {

/// The private rules of queries, which the model carries unread. Each is read and compiled when it is first asked and
/// kept as long as the model keeps it. Thread-safe.
class PrivateFilters final {
public:
    using Object = std::shared_ptr<const OpaqueObject>;

    /// Whether the rule catches the address, whatever its state. An object that is no rule, or is damaged, catches
    /// nothing.
    [[nodiscard]] bool testString(const Object& filter, const QString& address, Logger& log);

private:
    [[nodiscard]] std::shared_ptr<const BlacklistMatcher> matcherOf(const Object& filter);

    std::mutex _mutex;
    std::map<std::weak_ptr<const OpaqueObject>, std::shared_ptr<const BlacklistMatcher>, std::owner_less<>> _matchers;
};

} // namespace quarry
