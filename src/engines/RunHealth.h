#pragma once

#include "engines/ServiceHealth.h"

#include <mutex>

namespace quarry {

/// Adds up, over one run, what happened with each service. Thread-safe.
class RunHealth final {
public:
    void add(SearchService service, const ServiceHealth& health)
    {
        if (health.pages() == 0)
            return;
        const std::lock_guard lock(_mutex);
        _services[service] += health;
    }
    [[nodiscard]] HealthByService services() const
    {
        const std::lock_guard lock(_mutex);
        return _services;
    }

private:
    mutable std::mutex _mutex;
    HealthByService _services;
};

} // namespace quarry
