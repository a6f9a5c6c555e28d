#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace quarry {

/// What a program with a place on the desktop is told on its command line.
struct DesktopOptions {
    /// The program's own part of what --help prints.
    struct Help {
        const char* program;
        const char* description;
        const char* files;
        const char* footer;
    };

    QString home;      ///< Absolute path; empty: the user's own.
    QStringList files; ///< Absolute paths, to be opened.

    /// None when the program is to end at once with that status: help was asked for, or the command line is wrong;
    /// what there is to say has been printed then.
    [[nodiscard]] static std::optional<DesktopOptions> fromCommandLine(int argc, char** argv, const Help& help,
                                                                       int* status);
};

} // namespace quarry
