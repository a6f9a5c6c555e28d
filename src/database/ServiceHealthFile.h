#pragma once

#include "archive/PropertyListFile.h"
#include "engines/ServiceHealth.h"
#include "platform/Date.h"
#include "platform/HomeFolder.h"

#include <QList>
#include <QMap>
#include <QString>

#include <optional>

namespace quarry {

/// "ServiceHealth.plist": what happened with each service in the latest runs. See docs/service-health.md. Entries that
/// are not known here are kept. Thread-safe; nothing here may be called by somebody who holds the writer lock.
class ServiceHealthFile final {
public:
    /// Older ones are dropped when a run is added.
    static constexpr qsizetype MostRuns = 20;

    struct Run {
        Date ended;
        bool isStopped = false; ///< Before its end.
        HealthByService services;
        /// Where each of these services was reached: scheme, host and port.
        QMap<SearchService, QString> addresses;
    };

    /// `files` must outlive the object.
    ServiceHealthFile(HomeFolder home, FileStore& files);

    /// Oldest first; without what makes no sense. `fault` (may be null) gets one line for a person when the whole file
    /// makes none.
    [[nodiscard]] QList<Run> read(QString* fault = nullptr) const;
    /// Adds a run in which some service was asked; any other one is left out. Returns one line for a person on
    /// failure, else an empty text.
    [[nodiscard]] QString add(const Run& run) const;

    /// The latest run in which the service was asked, at that address; none when there is none.
    [[nodiscard]] static std::optional<Run> latestOf(const QList<Run>& runs, SearchService service,
                                                     const QString& address);

private:
    HomeFolder _home;
    PropertyListFile _file;
};

} // namespace quarry
