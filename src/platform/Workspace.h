#pragma once

#include <QString>
#include <QStringList>

namespace quarry {

/// What the desktop does on a program's behalf. Nothing here waits for what it started. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;
    /// Starts the program of a bundle ("….app"); one that runs already is merely brought to the front.
    virtual bool openBundle(const QString& bundlePath) = 0;
    /// Opens a file with the program of that bundle.
    virtual bool openFile(const QString& path, const QString& bundlePath) = 0;
    /// Opens a web address or file with whatever the user has chosen for it. False: the desktop was not asked, since it
    /// is neither, or nothing there could be started. What others wrote is the caller's to judge.
    virtual bool openAddress(const QString& address) = 0;
    /// Starts a program with arguments; it lives on when this one ends.
    virtual bool launch(const QString& program, const QStringList& arguments) = 0;
    /// Moves a file or folder to the user's Trash.
    virtual bool moveToTrash(const QString& path) = 0;
};

} // namespace quarry
