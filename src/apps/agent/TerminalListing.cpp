#include "apps/agent/TerminalListing.h"

#include "platform/Bundle.h"

#include <QStandardPaths>

namespace quarry {

namespace {

/// The user's own first, then what systems call theirs.
QStringList terminals()
{
    return {qEnvironmentVariable("TERMINAL"), QStringLiteral("x-terminal-emulator"), QStringLiteral("xterm")};
}

} // namespace

bool listInTerminal(Workspace& workspace, const QString& mainApplication)
{
    const QString quarry = Bundle::at(mainApplication).auxiliaryExecutable(QStringLiteral("quarry"));
    if (quarry.isEmpty())
        return false;
    // The path is an argument, so that the shell reads nothing in it.
    const QStringList command{QStringLiteral("-e"), QStringLiteral("sh"),
                              QStringLiteral("-c"), QStringLiteral("\"$1\" list; read -r answer"),
                              QStringLiteral("sh"), quarry};
    for (const QString& terminal : terminals()) {
        if (!terminal.isEmpty() && !QStandardPaths::findExecutable(terminal).isEmpty())
            return workspace.launch(terminal, command);
    }
    return false;
}

} // namespace quarry
