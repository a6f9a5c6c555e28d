#include "updater/DownloadPlace.h"

#include <QByteArray>
#include <QFileInfo>

#include <algorithm>

namespace quarry {

QString downloadFileName(const Url& address)
{
    constexpr qsizetype longest = 200;
    const QString path = address.path().toString();
    const QString name = QString::fromUtf8(QByteArray::fromPercentEncoding(path.section(u'/', -1).toUtf8()));
    const bool isPlain =
        !name.isEmpty() && name.toUtf8().size() <= longest && !name.startsWith(u'.') && !name.contains(u'/') &&
        std::all_of(name.begin(), name.end(), [](QChar c) { return c.isPrint() && c != QChar::ReplacementCharacter; });
    return isPlain ? name : QStringLiteral("QuarrySpotter-update.iso");
}

QString mountFolderName(const QString& imagePath)
{
    return QFileInfo(imagePath).completeBaseName();
}

} // namespace quarry
