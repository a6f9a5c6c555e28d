#pragma once

#include "platform/LoopWorker.h"
#include "platform/SealedFile.h"
#include "updater/InstallationParts.h"
#include "updater/NewBundle.h"
#include "updater/UpdaterParts.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace quarry {

/// What is to be installed where.
struct InstallOrder {
    QString imagePath;     ///< The downloaded image; gone afterwards, however the install ends.
    QByteArray signature;  ///< What lay beside it.
    Url imageUrl;          ///< Shown to the user where the image could not be used.
    QString installedPath; ///< The bundle to replace.
};

/// One install: checks the image, copies the new bundle beside the old one, asks every program of the product to quit,
/// moves the old bundle to the Trash and the new one to its place, says so, starts it and ends this program.
///
/// Until the old bundle goes to the Trash nothing is touched, and if the new one cannot take its place then, the old
/// one is put back. What is slow runs on a thread of its own; the object lives on the event loop's thread. Destroying
/// it waits for the step that runs and leaves neither image nor mount folder.
class UpdateInstall final {
public:
    /// `window` outlives the install. `ended` is called once everything was said: with a fault, or just before the
    /// program ends.
    UpdateInstall(const UpdaterParts& parts, InstallOrder order, UpdaterWindow& window,
                  std::function<void(InstallFault)> ended);
    ~UpdateInstall();
    UpdateInstall(const UpdateInstall&) = delete;
    UpdateInstall& operator=(const UpdateInstall&) = delete;

    /// Begins with the image.
    void installUpdate();
    /// Gives up where nothing was changed yet: before the other programs are asked to quit, and while the old bundle
    /// stays where it is in spite of the Trash. Else the install goes on.
    void cancel();

private:
    [[nodiscard]] InstallFault prepare();
    [[nodiscard]] InstallFault mount();
    [[nodiscard]] InstallFault stage();
    void moveOldToTrash();
    void waitForTrash();
    void placeNew();
    void succeed();
    void launch();
    void fail(InstallFault fault);
    void tell(InstallFault fault);
    void finish(std::function<void()> next);
    void cleanUp();
    void openAgent() const;
    void showAlert(const QString& title, const QString& message, const QString& button, std::function<void()> answered);

    const UpdaterParts& _parts;
    InstallationParts& _services;
    InstallOrder _order;
    UpdaterWindow& _window;
    std::function<void(InstallFault)> _ended;

    std::unique_ptr<DiskImageTool> _tool;
    std::optional<SealedFile> _sealed;
    QString _mountPoint;
    QString _staging; ///< The folder beside the old bundle that holds the new one.
    QString _trashed; ///< Where the old bundle lies in the Trash.
    bool _isWaiting = false;
    bool _isCancelled = false;
    bool _toldToQuit = false;
    LoopWorker _worker; ///< Goes first: its work uses the rest.
};

} // namespace quarry
