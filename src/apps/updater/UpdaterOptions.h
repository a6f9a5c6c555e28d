#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace quarry {

/// How the program ends. Told to people in docs/updater-protocol.md.
enum UpdaterStatus {
    AllUpdated = 0,
    NotSaved = 1, ///< Or the database could not be read.
    WrongUse = 2,
    SomeNotUpdated = 3,
    AnotherRuns = 4,
    Stopped = 5,
};

/// What QuarrySpotterUpdater is told on its command line.
struct UpdaterOptions {
    QStringList queries; ///< Names; empty: everything that is enabled.
    QString home;
    qint64 clockOffset = 0; ///< Seconds.
    bool progress = false;  ///< Lines for programs on standard output.

    /// None when the program is to end at once with that status: help was asked for, or the command line is wrong;
    /// what there is to say has been printed then.
    [[nodiscard]] static std::optional<UpdaterOptions> fromCommandLine(int argc, char** argv, int* status);
};

} // namespace quarry
