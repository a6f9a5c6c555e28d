#pragma once

#include <QString>

#include <functional>

namespace quarry {

/// What the agent needs of the software updater. Nothing here waits for the network. Main thread only.
class SoftwareUpdates {
public:
    virtual ~SoftwareUpdates() = default;
    /// A fresh updater in place of the last one.
    virtual void renew() = 0;
    /// Asks quietly, for the product "QS1", with a fresh updater: a newer version is announced to the product's
    /// programs, not offered.
    virtual void checkQuietly() = 0;
    /// A window of the updater, or any modal one, is shown.
    [[nodiscard]] virtual bool isShowingWindow() const = 0;
    /// "CurentVersionKey" of the last reply; empty when there was none.
    [[nodiscard]] virtual QString currentVersion() const = 0;
    /// Offers that version. The answer comes later, from the event loop, as the updater's result: 1 accepts.
    virtual void askForDownloadUpdate(const QString& version, std::function<void(int result)> answer) = 0;
};

} // namespace quarry
