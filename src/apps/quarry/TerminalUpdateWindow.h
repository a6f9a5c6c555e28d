#pragma once

#include "apps/quarry/StatusLine.h"
#include "updater/DownloadProgress.h"
#include "updater/UpdaterParts.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace quarry {

/// The update window of a terminal: the offer as a question, the progress as a line.
class TerminalUpdateWindow final : public UpdaterWindow {
public:
    enum class Offer {
        Accept, ///< Nobody is asked.
        Ask,    ///< Standard input is a person's.
        Tell,   ///< There is nobody to ask.
    };
    /// The references outlive the window.
    struct Parts {
        QString version; ///< The running one.
        Offer offer;
        const Clock& clock;
        EventTimers& events;
        const StringTable& texts; ///< The table "Updater".
        StatusLine& line;
        std::function<void()> declined; ///< The offer ends without an install.
    };
    explicit TerminalUpdateWindow(Parts parts);
    ~TerminalUpdateWindow() override;

    void setMaster(LXUpdater* master) override { _master = master; }
    void showAskUpdate(const UpdateInfos& infos) override;
    void center() override {}
    void orderFrontRegardless() override { _isShowing = true; }
    void hide() override;
    [[nodiscard]] bool isShowing() const override { return _isShowing; }
    void setStatus(const QString& text) override;
    void setProgressBarIndeterminate(bool) override {}
    void setProgressBarIndeterminate(bool indeterminate, double minValue, double maxValue,
                                     double currentValue) override;
    void setDownloadStartTime() override { _progress.setDownloadStartTime(); }
    void incrementProgressBarValue(double bytes) override;

private:
    void ask();
    void takeAnswer();
    void answer(int result);

    Parts _parts;
    LXUpdater* _master = nullptr;
    DownloadProgress _progress;
    QString _status;
    bool _isShowing = false;
    std::unique_ptr<QSocketNotifier> _input; ///< While a question is open.
};

} // namespace quarry
