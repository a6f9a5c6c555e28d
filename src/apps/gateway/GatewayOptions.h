#pragma once

#include <QString>

#include <optional>

namespace quarry {

/// What quarry-gateway is told on its command line.
struct GatewayOptions {
    QString folder; ///< Never empty: without the option the machine's documentation, else the bundled texts.
    QString indexFile;
    QString address;
    int port = 0;
    bool allowRemote = false;
    bool isVerbose = false;
    QString servicesFile;

    /// None when the program is to end at once with that status: help was asked for, or the command line is wrong; what
    /// there is to say has been printed then.
    [[nodiscard]] static std::optional<GatewayOptions> fromCommandLine(int argc, char** argv, int* status);
};

} // namespace quarry
