#include "agent/ui/Pictures.h"

#include "platform/SystemLog.h"

#include <QDir>
#include <QPixmap>

namespace quarry {

QIcon pictureNamed(const QString& name, const QString& resourcesFolder)
{
    const QDir folder(resourcesFolder);
    QIcon icon;
    for (const QString& file : folder.entryList({name + QStringLiteral("-*.png")}, QDir::Files)) {
        if (const QPixmap picture(folder.filePath(file)); !picture.isNull())
            icon.addPixmap(picture);
    }
    if (icon.isNull())
        systemLog(QStringLiteral("no picture \"%1\" in \"%2\"").arg(name, resourcesFolder));
    return icon;
}

} // namespace quarry
