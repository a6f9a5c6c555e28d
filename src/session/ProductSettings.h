#pragma once

#include "engines/SearchService.h"
#include "platform/Date.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"

#include <QMap>
#include <QString>

namespace quarry {

/// What the preferences show: the schedule, what a refresh asks for, and where the services are reached. Kept in the
/// files that the engine, the agent and the updater read. A plain value.
struct ProductSettings {
    struct Service {
        bool isAsked = true;
        QString address; ///< Scheme, host and port; empty: the public one.

        friend bool operator==(const Service&, const Service&) = default;
    };

    bool automatic = false;
    qint64 minutes = 30;
    bool checkForUpdates = true;
    qint64 resultsPerService = 40;
    qint64 newLinks = 0; ///< Per update of a query; 0: no limit.
    QMap<SearchService, Service> services;

    /// Reads small files; defaults for what is missing or makes no sense.
    [[nodiscard]] static ProductSettings read(const HomeFolder& home, FileStore& files, Date now);
};

/// Writes what differs from `before` and nothing else: other programs may have changed the rest meanwhile. Waits for
/// the writer lock, so it belongs on another thread than a window's. One line for a person on failure, else empty.
[[nodiscard]] QString saveSettings(const ProductSettings& settings, const ProductSettings& before,
                                   const HomeFolder& home, FileStore& files);

} // namespace quarry
