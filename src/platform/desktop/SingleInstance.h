#pragma once

#include "platform/FileLock.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>

namespace quarry {

class SessionBus;

/// Lets one copy of a program run in a user's session. A second one hands over what it was started for and leaves.
///
/// The first holds a lock file, and where there is a session bus also the program's name on it, with the object that
/// desktops use for the same purpose ("org.freedesktop.Application"). Requests come over the bus or, without one, as
/// files in a folder beside the lock. Lives on the bus's thread.
class SingleInstance final : public QObject {
    Q_OBJECT
public:
    /// What another copy, or the desktop, wants of this one: to come to the front and to open files.
    struct Request {
        QStringList files;       ///< Absolute paths; none: just come to the front.
        QString activationToken; ///< The desktop's permission to take the focus; may be empty.
    };
    enum class Outcome {
        First,      ///< This is the one that runs.
        HandedOver, ///< The one that runs was asked: end.
        Failed,     ///< One runs but does not answer, or cannot be asked: end, and say so.
    };

    /// `identifier` is the program's bundle identifier ("com.zep.QuarrySpotter"), which becomes its name on the bus.
    /// The folder is where the lock lies; see lockFolder().
    SingleInstance(SessionBus& bus, QString identifier, QString folder);
    ~SingleInstance() override;

    /// The user's runtime folder, or that fallback where the session has none. Programs over different home folders
    /// do not meet in it: the names of the locks tell the home folders apart.
    [[nodiscard]] static QString lockFolder(const QString& fallback);

    /// To be called once, first thing; files are absolute paths. Waits a few seconds at most for the other's answer.
    [[nodiscard]] Outcome claim(const QStringList& files);
    /// Called from the event loop. Requests that come while there is none are dropped.
    void setRequestHandler(std::function<void(const Request&)> handler) { _handler = std::move(handler); }

private:
    friend class ApplicationObject;

    [[nodiscard]] bool takeName();
    void publish();
    void watchFolder();
    void takeRequests();
    void handle(const Request& request);
    [[nodiscard]] Outcome handOver(const Request& request);
    [[nodiscard]] bool writeRequest(const Request& request);

    SessionBus& _bus;
    QString _identifier;
    QString _lockFile;
    QString _requestFolder;
    std::function<void(const Request&)> _handler;
    std::optional<FileLock> _lock;
    QFileSystemWatcher _watcher;
};

} // namespace quarry
