#pragma once

#include "archive/StringTable.h"
#include "platform/Clock.h"
#include "platform/DistributedNotifications.h"
#include "platform/EventTimers.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"
#include "platform/Workspace.h"
#include "updater/LXUpdater.h"
#include "updater/PreferencesDefaults.h"
#include "updater/ProductInstallation.h"
#include "updater/ui/UpdaterAlertBoxes.h"

#include <QString>

#include <functional>

namespace quarry {

class LXUpdaterController;

/// Everything about software updates that the main application does: the check from its menu, the offer that was
/// accepted elsewhere or announced by the agent, download, install, and the start of the new version. Lives on the main
/// thread.
class ApplicationUpdates final {
public:
    /// The references outlive the object.
    struct Parts {
        HomeFolder home;
        QString bundlePath; ///< "…/QuarrySpotter.app"
        const Clock& clock;
        EventTimers& events;
        DistributedNotifications& notifications;
        Workspace& workspace;
        FileStore& files;
        const StringTable& texts; ///< The table "Updater".
        /// Ends the program, saved; the new version starts once it has ended.
        std::function<void()> quit;
    };
    explicit ApplicationUpdates(Parts parts);
    ~ApplicationUpdates();
    ApplicationUpdates(const ApplicationUpdates&) = delete;
    ApplicationUpdates& operator=(const ApplicationUpdates&) = delete;

    /// "Check for updates…": always answered. While a window of the updater is open, that comes to the front instead.
    void checkForUpdates();
    /// Where the user has accepted an offer in the status bar, makes it here. To be called at start, and when the
    /// program is asked to come to the front.
    void takeUpOffer();
    /// True in the program that installs: it does not quit on "QUIT_EVERYBODY_NOTIFICATION QS1".
    [[nodiscard]] bool isInstalling() const { return _updater.isInstalling(); }

private:
    [[nodiscard]] UpdaterParts updaterParts();
    void offerAnnounced();
    void begin();
    [[nodiscard]] bool isBusy() const;
    void checkEnded(UpdateCheckEnd end);

    Parts _parts;
    UpdaterAlertBoxes _alerts;
    PreferencesDefaults _defaults;
    ProductInstallation _installation;
    LXUpdaterController* _window = nullptr; ///< Owned by the updater.
    bool _isAsked = false;                  ///< The user waits for the check's answer.
    LXUpdater _updater;
    std::shared_ptr<ApplicationUpdates*> _self; ///< For an observer that may live longer.
};

} // namespace quarry
