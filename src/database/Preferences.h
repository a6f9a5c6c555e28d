#pragma once

#include "archive/PropertyListFile.h"
#include "platform/HomeFolder.h"

#include <QString>

namespace quarry {

/// The preferences of the product: every "pref_…" key that is not the schedule's. Every change keeps the entries
/// that are not known here. Thread-safe; no change may be called by somebody who holds the writer lock.
class Preferences final {
public:
    struct Settings {
        qint64 resultsPerEngine = 40; ///< "pref_umberOfResultPerEngine": bounds the start offset of fetched pages.
        qint64 numberOfNewLinks = 0;  ///< "pref_numberOfNewLinks": links added per update, 0 for no limit.
    };

    /// `files` must outlive the object.
    Preferences(HomeFolder home, FileStore& files);

    /// Defaults for what is missing. `fault` (may be null) gets one line for a person when the file makes no sense.
    [[nodiscard]] Settings read(QString* fault = nullptr) const;

    // Each returns one line for a person on failure, an empty text otherwise.
    [[nodiscard]] QString setResultsPerEngine(qint64 count) const;
    [[nodiscard]] QString setNumberOfNewLinks(qint64 count) const;

private:
    [[nodiscard]] QString set(const QString& key, qint64 value) const;

    HomeFolder _home;
    PropertyListFile _file;
};

} // namespace quarry
