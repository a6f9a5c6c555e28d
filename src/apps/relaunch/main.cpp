#include "platform/DesktopWorkspace.h"
#include "platform/ProcessEnd.h"

#include <QString>

#include <cstdio>

namespace {

enum ExitStatus { Opened = 0, Failed = 1, WrongUse = 2 };

int fail(const QString& reason, ExitStatus status)
{
    std::fprintf(stderr, "RelaunchApp: %s\n", qUtf8Printable(reason));
    return status;
}

} // namespace

/// `RelaunchApp PATH PID`: waits for the process to end, then opens the bundle at that path.
int main(int argc, char** argv)
{
    using namespace quarry;
    if (argc != 3)
        return fail(QStringLiteral("use: RelaunchApp BUNDLE PROCESS"), WrongUse);
    bool isNumber = false;
    const QString bundle = QString::fromLocal8Bit(argv[1]);
    const qint64 processId = QString::fromLocal8Bit(argv[2]).toLongLong(&isNumber);
    if (!isNumber || processId <= 0)
        return fail(QStringLiteral("%1 is no process id").arg(QString::fromLocal8Bit(argv[2])), WrongUse);
    if (!waitForProcessEnd(processId))
        return fail(QStringLiteral("process %1 cannot be waited for").arg(processId), Failed);
    return DesktopWorkspace().openBundle(bundle) ? Opened : Failed;
}
