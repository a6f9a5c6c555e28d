#pragma once

#include "platform/Workspace.h"

namespace quarry {

/// The workspace of a free desktop. A bundle's program is always started: the product's programs let one copy run
/// (see SingleInstance), and a second hands over to it what it was started for. So there is no waiting for an answer,
/// and no moment at which a program that is just ending is taken for one that runs.
class DesktopWorkspace final : public Workspace {
public:
    bool openBundle(const QString& bundlePath) override;
    /// The program gets the file as its only argument.
    bool openFile(const QString& path, const QString& bundlePath) override;
    /// Addresses of web pages, mail and files, and absolute paths; nothing else is handed to the desktop.
    bool openAddress(const QString& address) override;
    bool launch(const QString& program, const QStringList& arguments) override;
    /// Refuses what it could only delete for good.
    bool moveToTrash(const QString& path) override;
};

} // namespace quarry
