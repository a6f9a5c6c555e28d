#pragma once

#include "agent/SoftwareUpdates.h"
#include "updater/LXUpdater.h"

#include <memory>

namespace quarry {

/// The agent's own software updater.
class LXSoftwareUpdates final : public SoftwareUpdates, private UpdateResultDelegate {
public:
    /// Makes updaters; what they work with must outlive this object.
    using Make = std::function<std::unique_ptr<LXUpdater>()>;
    explicit LXSoftwareUpdates(Make make) : _make(std::move(make)) {}
    ~LXSoftwareUpdates() override;

    void renew() override;
    void checkQuietly() override;
    [[nodiscard]] bool isShowingWindow() const override;
    [[nodiscard]] QString currentVersion() const override;
    void askForDownloadUpdate(const QString& version, std::function<void(int result)> answer) override;

private:
    void updateResulteDidGetResult(int result) override;

    Make _make;
    std::unique_ptr<LXUpdater> _updater;
    std::function<void(int)> _answer;
};

} // namespace quarry
