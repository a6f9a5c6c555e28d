#pragma once

#include "agent/AgentBundle.h"
#include "platform/HomeFolder.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace quarry {

/// Starts and ends the agent of a home folder. The agent of one's own home folder is also a login item; those of other
/// folders are there to try things out.
class AgentControl final {
public:
    explicit AgentControl(HomeFolder home);

    /// Its process; none when it does not run.
    [[nodiscard]] std::optional<std::int64_t> process() const;
    /// It is among the programs that start at login, or the user has switched it off there.
    [[nodiscard]] bool isLoginItem() const;
    [[nodiscard]] bool isOfOwnHome() const;

    // Each answers one line for a person on failure, an empty text otherwise. They wait some seconds at most.
    /// Nothing when it runs. The schedule must ask for it, or it leaves at once.
    [[nodiscard]] QString start() const;
    /// Nothing when it does not run.
    [[nodiscard]] QString stop() const;

    void addLoginItem() const;
    void removeLoginItem() const;

private:
    [[nodiscard]] QString program() const;
    [[nodiscard]] bool waitUntilRuns() const;

    HomeFolder _home;
    QString _bundle; ///< Empty when this program does not lie in the product's bundle.
};

} // namespace quarry
