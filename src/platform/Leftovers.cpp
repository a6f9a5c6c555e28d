#include "platform/Leftovers.h"

#include "platform/FileStore.h"
#include "platform/SystemLog.h"

#include <QDateTime>
#include <QDir>

#include <algorithm>

namespace quarry {

namespace {

constexpr qint64 SecondsUntilLeftover = 3600;

bool isTemporaryName(const QString& name, const QString& prefix)
{
    const auto isDigit = [](QChar c) { return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f'); };
    return name.size() == prefix.size() + FileStore::TemporaryNameDigits && name.startsWith(prefix) &&
           std::all_of(name.begin() + prefix.size(), name.end(), isDigit);
}

} // namespace

void removeLeftovers(const QString& folder, const QStringList& temporaryPrefixes)
{
    const QDateTime latest = QDateTime::currentDateTimeUtc().addSecs(-SecondsUntilLeftover);
    for (const QString& prefix : temporaryPrefixes) {
        for (const QFileInfo& file : QDir(folder).entryInfoList({prefix + u'*'}, QDir::Files | QDir::Hidden)) {
            if (!isTemporaryName(file.fileName(), prefix) || file.isSymLink() || file.lastModified() > latest)
                continue;
            if (!QFile::remove(file.filePath()))
                debugLog(QStringLiteral("cannot remove %1").arg(file.filePath()));
        }
    }
}

} // namespace quarry
