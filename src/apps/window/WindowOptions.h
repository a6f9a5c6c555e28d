#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace quarry {

/// What QuarrySpotter is told on its command line.
struct WindowOptions {
    QString home;      ///< Absolute path; empty: the user's own.
    QStringList files; ///< Absolute paths, to be imported.

    /// None when the program is to end at once with that status: help was asked for, or the command line is wrong;
    /// what there is to say has been printed then.
    [[nodiscard]] static std::optional<WindowOptions> fromCommandLine(int argc, char** argv, int* status);
};

} // namespace quarry
