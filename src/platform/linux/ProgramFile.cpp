#include "platform/ProgramFile.h"

#include <QFile>

#include <unistd.h>

#include <climits>

namespace quarry {

QString runningProgramFile()
{
    char buffer[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", buffer, sizeof buffer);
    if (length <= 0)
        return {};
    QString path = QFile::decodeName(QByteArray(buffer, length));
    // An upgrade replaced the file while the program runs: its place in the bundle is still the same.
    const QString deleted = QStringLiteral(" (deleted)");
    if (path.endsWith(deleted))
        path.chop(deleted.size());
    return path;
}

} // namespace quarry
