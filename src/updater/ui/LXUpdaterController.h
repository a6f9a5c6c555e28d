#pragma once

#include "platform/LoopWorker.h"
#include "updater/DownloadProgress.h"
#include "updater/UpdaterParts.h"

#include <QDialog>
#include <QObject>

#include <functional>
#include <memory>

class QPushButton;

namespace Ui {
class Updater;
}

namespace quarry {

/// The update window: the offer with its release notes, then the progress of download and install. Its interface file
/// is Updater.ui; the widgets have their names there.
class LXUpdaterController final : public QObject, public UpdaterWindow {
public:
    /// What the window works with; the references outlive it.
    struct Parts {
        QString version; ///< The running one.
        const Clock& clock;
        EventTimers& events;
        const StringTable& texts; ///< The table "Updater".
        /// For the release notes; used on a thread of its own.
        std::function<std::shared_ptr<UpdateLoader>()> makeLoader;
        /// Opens the product's page in the browser.
        std::function<void(const QString& address)> openAddress;
    };
    explicit LXUpdaterController(Parts parts);
    ~LXUpdaterController() override;

    void setMaster(LXUpdater* master) override { _master = master; }
    void showAskUpdate(const UpdateInfos& infos) override;
    void center() override;
    void orderFrontRegardless() override;
    void hide() override { _window.hide(); }
    [[nodiscard]] bool isShowing() const override { return _window.isVisible(); }
    void setStatus(const QString& text) override;
    void setProgressBarIndeterminate(bool indeterminate) override;
    void setProgressBarIndeterminate(bool indeterminate, double minValue, double maxValue,
                                     double currentValue) override;
    void setDownloadStartTime() override { _progress.setDownloadStartTime(); }
    void incrementProgressBarValue(double bytes) override;

    /// What is shown, in front of the other windows.
    void bringToFront();
    [[nodiscard]] QDialog& window() { return _window; }

private:
    void makeButtons();
    /// The answer to the offer; 1 accepts.
    void warningAction(int result);
    void cancelUpdate();
    void disclosureChange();
    /// Fits the window to the release notes shown or hidden.
    void shrinkWindow();
    void fit(const QWidget& panel);
    /// The window was closed, or Escape pressed.
    void closed();
    void offerReleaseNotes();
    void showReleaseNotes(const std::optional<QString>& html);
    void showPanel(QWidget* panel);
    void showBarValue();

    Parts _parts;
    LXUpdater* _master = nullptr;
    UpdateInfos _updateInfos;
    DownloadProgress _progress;
    QDialog _window; ///< "updateWaningWin"
    std::unique_ptr<Ui::Updater> _ui;
    QPushButton* _more = nullptr; ///< Opens the product's page; the window stays.
    std::shared_ptr<UpdateLoader> _notesLoader;
    std::unique_ptr<LoopWorker> _notes; ///< The release notes on their way.
};

} // namespace quarry
