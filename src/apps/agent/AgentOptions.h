#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace quarry {

/// What QuarrySpotterAgent is told on its command line.
struct AgentOptions {
    QString home;      ///< Empty: the user's own.
    QStringList files; ///< To be opened with the main application.

    /// None when the program is to end at once with that status: help was asked for, or the command line is wrong;
    /// what there is to say has been printed then.
    [[nodiscard]] static std::optional<AgentOptions> fromCommandLine(int argc, char** argv, int* status);
};

} // namespace quarry
