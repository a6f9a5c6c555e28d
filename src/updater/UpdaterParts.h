#pragma once

#include "archive/StringTable.h"
#include "platform/Clock.h"
#include "platform/DistributedNotifications.h"
#include "platform/EventTimers.h"
#include "platform/PageLoader.h"
#include "updater/ProductInfo.h"
#include "updater/UpdateInfos.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace quarry {

class LXUpdater;
struct InstallationParts;

/// An informational message with one or more buttons; the first is the default.
struct UpdaterAlert {
    QString title;
    QString message;
    QStringList buttons;
};

/// Shows the updater's messages. Main thread only.
class UpdaterAlerts {
public:
    virtual ~UpdaterAlerts() = default;
    /// Returns at once. `answered`, which may be empty, is called later, from the event loop, with the button's place
    /// in the list; a message closed otherwise counts as its last button.
    virtual void show(const UpdaterAlert& alert, std::function<void(int button)> answered) = 0;
    /// A modal window is open in this program, or a sheet on its main window.
    [[nodiscard]] virtual bool isShowing() const = 0;
    /// Brings the application to the front.
    virtual void bringToFront() = 0;
};

/// The update window: the offer, then the progress of download and install. Main thread only.
class UpdaterWindow {
public:
    virtual ~UpdaterWindow() = default;
    /// The updater that gets the answer (controllerResult) and Cancel (cancelUpdate). It outlives the window.
    virtual void setMaster(LXUpdater* master) = 0;
    /// Shows the offer with its release notes.
    virtual void showAskUpdate(const UpdateInfos& infos) = 0;
    virtual void center() = 0;
    /// Shows the progress panel, in front whichever application is active.
    virtual void orderFrontRegardless() = 0;
    virtual void hide() = 0;
    [[nodiscard]] virtual bool isShowing() const = 0;
    virtual void setStatus(const QString& text) = 0;
    virtual void setProgressBarIndeterminate(bool indeterminate) = 0;
    /// In bytes. A minimum of 0 begins a new download: see DownloadProgress.
    virtual void setProgressBarIndeterminate(bool indeterminate, double minValue, double maxValue,
                                             double currentValue) = 0;
    virtual void setDownloadStartTime() = 0;
    virtual void incrementProgressBarValue(double bytes) = 0;
};

/// The user default "kWarnAgainUserForMoreRecentOS". Main thread only.
class UpdaterDefaults {
public:
    virtual ~UpdaterDefaults() = default;
    /// True when it was never set.
    [[nodiscard]] virtual bool warnAgainUserForMoreRecentOS() const = 0;
    virtual void setWarnAgainUserForMoreRecentOS(bool warnAgain) = 0;
};

/// Gets the user's answer to an offer in place of the updater, which then starts no download.
class UpdateResultDelegate {
public:
    virtual ~UpdateResultDelegate() = default;
    virtual void updateResulteDidGetResult(int result) = 0;
};

/// The requests of a check. stop() ends a running and every later one; thread-safe.
class UpdateLoader : public PageLoader {
public:
    virtual void stop() = 0;
};

/// The real one: trusted addresses only (HTTPS, or this machine), redirects included; a reply is small, and soon there.
[[nodiscard]] std::shared_ptr<UpdateLoader> makeUpdateLoader();

/// What an updater works with. The referenced parts outlive it.
struct UpdaterParts {
    ProductInfo product;
    const Clock& clock;
    EventTimers& events;
    DistributedNotifications& notifications;
    UpdaterDefaults& defaults;
    UpdaterAlerts& alerts;
    const StringTable& texts; ///< The string table "Updater".
    /// For each check; called on the main thread, used on the check's own. makeUpdateLoader is the real one.
    std::function<std::shared_ptr<UpdateLoader>()> makeLoader;
    /// The window, made for the first offer; empty, or answering null, in a program that has none.
    std::function<std::unique_ptr<UpdaterWindow>()> makeWindow;
    /// Download and install; null in programs that only check.
    InstallationParts* installation = nullptr;
};

} // namespace quarry
