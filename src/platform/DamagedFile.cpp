#include "platform/DamagedFile.h"

#include <QDateTime>
#include <QFileInfo>

namespace quarry {

DamagedCopy copyDamagedFileAside(FileStore& files, const QString& path, const QByteArray& bytes, Date modificationDate)
{
    const QFileInfo file(path);
    const QString date = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(modificationDate.unixSeconds()), Qt::UTC)
                             .toString(QStringLiteral("yyyy-MM-dd-HHmmss"));
    const QString stem = file.path() + QLatin1Char('/') + file.completeBaseName() + QStringLiteral(".damaged-") + date;
    const QString suffix = file.suffix().isEmpty() ? QString() : QLatin1Char('.') + file.suffix();
    constexpr int MostNames = 1000;
    for (int number = 1; number <= MostNames; ++number) {
        const QString copy = number == 1 ? stem + suffix : stem + QLatin1Char('-') + QString::number(number) + suffix;
        const FileStore::WriteResult written = files.create(copy, QStringLiteral(".damagedCopy"), 0660, bytes);
        if (written.ok())
            return {copy, {}};
        if (!written.alreadyThere)
            return {{}, written.error};
        const FileStore::ReadResult there = files.read(copy);
        if (there.error.isEmpty() && there.stamp && there.bytes == bytes)
            return {copy, {}};
    }
    return {{}, QStringLiteral("cannot copy %1 aside: too many damaged copies").arg(path)};
}

} // namespace quarry
