#include "platform/PrivateFolder.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace quarry {

QString makePrivateFolder(const QString& path)
{
    if (::mkdir(QFile::encodeName(path).constData(), 0700) == 0)
        return {};
    return QStringLiteral("%1 cannot be made: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
}

bool isPrivateFolder(const QString& path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::geteuid() && (status.st_mode & 077) == 0;
}

} // namespace quarry
