#pragma once

#include "apps/quarry/Outcome.h"
#include "apps/quarry/Session.h"
#include "apps/quarry/StatusLine.h"
#include "apps/quarry/TerminalUpdateWindow.h"
#include "archive/StringTable.h"
#include "platform/DesktopWorkspace.h"
#include "platform/QtEventTimers.h"
#include "platform/desktop/DBusNotifications.h"
#include "platform/desktop/SessionBus.h"
#include "updater/LXUpdater.h"
#include "updater/PreferencesDefaults.h"
#include "updater/ProductInstallation.h"

#include <functional>
#include <optional>

namespace quarry {

/// One software update in a terminal. Made after the application object; lives on its thread.
class UpdateRun final {
public:
    enum class Mode {
        Check,   ///< Tells what there is.
        Ask,     ///< Asks before it installs, where there is somebody to ask.
        Install, ///< Installs what there is.
    };
    UpdateRun(Session& session, Mode mode);
    ~UpdateRun();
    UpdateRun(const UpdateRun&) = delete;
    UpdateRun& operator=(const UpdateRun&) = delete;

    /// Runs the event loop until there is nothing more to do.
    [[nodiscard]] Outcome run();
    /// Ends it; what was begun leaves nothing. An install that has begun to change things is not stopped. From the
    /// event loop.
    void stop();

private:
    /// Keeps the last message, which becomes what the command says. There is nobody to choose between two answers.
    class Messages final : public UpdaterAlerts {
    public:
        explicit Messages(EventTimers& events) : _events(events) {}
        void show(const UpdaterAlert& alert, std::function<void(int)> answered) override;
        [[nodiscard]] bool isShowing() const override { return false; }
        void bringToFront() override {}
        [[nodiscard]] const QString& text() const { return _text; }

    private:
        EventTimers& _events;
        QString _text;
    };

    [[nodiscard]] UpdaterParts updaterParts();
    [[nodiscard]] TerminalUpdateWindow::Parts windowParts(const QString& version);
    [[nodiscard]] bool openNewVersion(const QString& bundlePath);
    void checkEnded(UpdateCheckEnd end);
    void installationEnded(UpdateInstallation::End end);
    void end(Outcome outcome);

    Session& _session;
    Mode _mode;
    QString _bundlePath;
    StringTable _texts;
    StatusLine _line;
    QtEventTimers _events;
    SessionBus _bus;
    DBusNotifications _notifications;
    DesktopWorkspace _workspace;
    Messages _messages;
    PreferencesDefaults _defaults;
    ProductInstallation _installation;
    std::optional<Outcome> _outcome;
};

} // namespace quarry
