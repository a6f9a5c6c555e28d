#pragma once

#include <QString>

namespace quarry {

/// The agent's own bundle and its neighbours. A plain value.
struct AgentBundle {
    QString path;    ///< "…/QuarrySpotterAgent.app"
    QString name;    ///< "CFBundleName"
    QString version; ///< "CFBundleVersion"; empty when it is not known.

    /// Reads the bundle's Info.plist. A bundle without one is named after its file.
    [[nodiscard]] static AgentBundle at(const QString& path);

    /// The name of the bundle's file without its extension: what the process table calls the agent.
    [[nodiscard]] QString processName() const;
    /// "…/QuarrySpotter.app", three components up.
    [[nodiscard]] QString mainApplication() const;
    /// The updater application's bundle; where it would be when it is not there.
    [[nodiscard]] QString updaterApplication() const;
    /// The restart helper's file; empty when it is not there.
    [[nodiscard]] QString relaunchHelper() const;
};

} // namespace quarry
