#pragma once

#include "platform/FileLock.h"

#include <QString>
#include <QTemporaryDir>

#include <optional>

namespace quarry {

/// A place in a folder where something is made that must not be taken for finished before it is: hidden, and gone with
/// everything in it when this object goes.
class StagedFolder final {
public:
    /// Makes the folder itself when it is missing, and removes what a program that was killed left in it.
    explicit StagedFolder(const QString& folder);

    /// Why there is none, in one line for a person; empty when it is there.
    [[nodiscard]] const QString& error() const { return _error; }
    [[nodiscard]] QString path() const { return _staging->path(); }
    /// Moves what was made under that name to its place in the folder. Answers why that failed, in one line for a
    /// person; empty when it is there.
    [[nodiscard]] QString publish(const QString& name) const;

private:
    [[nodiscard]] QString make();
    void removeLeftovers() const;

    QString _folder;
    std::optional<QTemporaryDir> _staging;
    FileLock _lock; ///< Tells the next one that this is no leftover.
    QString _error;
};

} // namespace quarry
