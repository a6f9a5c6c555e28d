#pragma once

#include "engines/SearchServices.h"
#include "engines/ServiceHealth.h"
#include "platform/Date.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"

#include <QList>
#include <QString>

#include <optional>

namespace quarry {

/// A search service as it is set up now, and how it did when it was last asked there.
struct ServiceState {
    SearchService service = SearchService::Google;
    bool isEnabled = false;
    QString address;           ///< Scheme, host and port.
    std::optional<Date> asked; ///< The end of the latest run in which it was asked at that address; none: never.
    ServiceHealth health;      ///< In that run.
};

/// All services, in the order in which they are asked. Reads two small files. What makes no sense in them counts as
/// not there.
[[nodiscard]] QList<ServiceState> serviceStates(const HomeFolder& home, FileStore& files);

} // namespace quarry
