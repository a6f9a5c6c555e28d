#pragma once

#include "archive/PropertyListFile.h"
#include "platform/Date.h"
#include "platform/HomeFolder.h"

#include <QString>

#include <optional>

namespace quarry {

/// "Schedule.plist": when refreshes are due. Made by the first program that needs it, with automatic refresh off
/// and 30 minutes. Every change keeps the entries that are not known here. Thread-safe; none of the changes may be
/// called by somebody who holds the writer lock.
class Schedule final {
public:
    struct Settings {
        bool automatic = false; ///< "pref_automatic_ON"
        /// "pref_automatic_periodicity", from 1 to MostMinutes. What is absent, 0 or below reads as 30.
        qint64 periodicityMinutes = 30;
        std::optional<Date> lastUpdate; ///< "pref_lastUpdate"; a date more than a day ahead counts as none.
        bool checkForUpdates = true;    ///< "pref_checkForUpdates"
        bool exists = false;            ///< False: the file is missing, and these are the defaults.
    };

    /// The longest period; more would come to overflow, and never come due.
    static constexpr qint64 MostMinutes = 1000000;

    /// `files` must outlive the object.
    Schedule(HomeFolder home, FileStore& files);

    /// Defaults for what is missing. `fault` (may be null) gets one line for a person when the file makes no sense.
    [[nodiscard]] Settings read(Date now, QString* fault = nullptr) const;

    // Each returns one line for a person on failure, an empty text otherwise.
    /// Makes the file if it is missing.
    [[nodiscard]] QString ensureExists() const;
    [[nodiscard]] QString setAutomatic(bool on) const;
    [[nodiscard]] QString setPeriodicityMinutes(qint64 minutes) const;
    [[nodiscard]] QString setCheckForUpdates(bool on) const;
    /// The time of the last complete refresh.
    [[nodiscard]] QString setLastUpdate(Date date) const;

private:
    [[nodiscard]] QString set(const QString& key, const PlistValue& value) const;
    [[nodiscard]] QString change(const std::function<void(PlistValue::Dictionary&)>& apply) const;

    HomeFolder _home;
    PropertyListFile _file;
};

} // namespace quarry
