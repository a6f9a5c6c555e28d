#include "platform/FileSync.h"

#include "platform/linux/Descriptor.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace quarry {

bool syncFileSystem(const QString& path)
{
    const Descriptor place(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
    return place.isOpen() && ::syncfs(place.get()) == 0;
}

} // namespace quarry
