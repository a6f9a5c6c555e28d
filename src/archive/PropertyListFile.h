#pragma once

#include "archive/PropertyList.h"
#include "platform/FileStore.h"

#include <QString>

#include <functional>

namespace quarry {

/// A small settings file: a dictionary in a property list, shared by several programs. Each change is made under
/// the lock that all writers of the product take, to what is in the file by then, so that nobody's entry gets
/// lost, known or not. Thread-safe, as the file store is.
class PropertyListFile final {
public:
    /// `files` must outlive the object. The folders of both paths must exist for a change.
    PropertyListFile(QString path, QString lockPath, FileStore& files);

    struct Content {
        PlistValue::Dictionary entries; ///< Empty when the file is missing or faulty.
        bool exists = false;
        QString fault; ///< One line for a person that names the file; empty when it could be read or is missing.
    };
    [[nodiscard]] Content read() const;

    /// Takes the lock, reads, changes, replaces, lets go. Nothing is written when the change changed nothing and
    /// the file is there. A file that makes no sense is copied aside first; one that cannot be read is left alone.
    /// Not to be called by somebody who holds the lock. Returns one line for a person on failure, else an empty text.
    [[nodiscard]] QString change(const std::function<void(PlistValue::Dictionary&)>& apply) const;

private:
    struct Loaded;
    [[nodiscard]] Loaded load() const;

    QString _path;
    QString _lockPath;
    FileStore& _files;
};

} // namespace quarry
