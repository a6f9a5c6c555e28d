#pragma once

#include "platform/FileStore.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace quarry {

/// Reads a folder and nothing outside it: no symbolic link below the folder is followed, and neither "..", "." nor an
/// empty component is accepted, so no path leads out, not even one whose parts are exchanged meanwhile. Pipes,
/// devices and sockets do not exist here. Paths are relative to the folder, the bytes of their names as on disk,
/// "/" between them; the folder itself is the empty path.
/// Movable; thread-safe.
class ContainedFolder final {
public:
    struct Entry {
        QByteArray name;
        bool isFolder = false;
        FileStamp stamp;
    };
    struct Content {
        QByteArray bytes;
        bool cut = false; ///< The file is longer than the limit.
        FileStamp stamp;
    };

    /// The folder may itself be reached through links. On failure none, and one line for a person in error.
    [[nodiscard]] static std::optional<ContainedFolder> open(const QString& path, QString* error);

    ContainedFolder(ContainedFolder&& other) noexcept;
    ContainedFolder& operator=(ContainedFolder&& other) noexcept;
    ContainedFolder(const ContainedFolder&) = delete;
    ContainedFolder& operator=(const ContainedFolder&) = delete;
    ~ContainedFolder();

    /// Regular files and folders, in the order of their names' bytes; none when the folder is not there or cannot be
    /// read.
    [[nodiscard]] std::optional<std::vector<Entry>> list(const QByteArray& folder) const;
    /// At most limit bytes of a regular file; none when there is no such file or it cannot be read.
    [[nodiscard]] std::optional<Content> read(const QByteArray& file, std::int64_t limit) const;

    /// The folder's own absolute path, links resolved.
    [[nodiscard]] QString path() const { return _path; }

    /// Whether every component is a plain name.
    [[nodiscard]] static bool isPlainPath(const QByteArray& path);

private:
    ContainedFolder(int descriptor, QString path) : _descriptor(descriptor), _path(std::move(path)) {}

    int _descriptor = -1;
    QString _path;
};

} // namespace quarry
