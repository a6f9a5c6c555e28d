#pragma once

#include "platform/FileStore.h"

#include <QByteArray>
#include <QString>

namespace quarry {

/// What became of a file whose content could not be understood.
struct DamagedCopy {
    QString path;  ///< The copy; empty when there is none.
    QString error; ///< Why it could not be made; the file must then not be replaced.
};

/// Copies the bytes of a damaged file aside, beside it: "Name.damaged-2026-11-21-041530.ext" after the date of the
/// damaged file, in UTC. An existing file is never overwritten: one with these very bytes is the copy, and beside
/// another one the name gets a number.
[[nodiscard]] DamagedCopy copyDamagedFileAside(FileStore& files, const QString& path, const QByteArray& bytes,
                                               Date modificationDate);

} // namespace quarry
