#pragma once

#include "platform/Date.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>

namespace quarry {

/// What identifies the state of a file on disk: it differs after every replacement.
struct FileStamp {
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modifiedNanoseconds = 0; ///< Since 1970-01-01 UTC.

    [[nodiscard]] Date modificationDate() const;
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// Receives the bytes of a file being written, in order. Returns false when they could not be taken; the
/// producer then stops.
class ByteSink {
public:
    virtual ~ByteSink() = default;
    [[nodiscard]] virtual bool append(const char* data, std::size_t size) = 0;
};

/// The few file operations whose failure matters, behind an interface so that tests can make them fail.
/// Thread-safe.
class FileStore {
public:
    struct WriteResult {
        QString error;             ///< Empty on success, else one line for a person.
        FileStamp stamp;           ///< Of the written file, taken from the open temporary file before the rename.
        bool alreadyThere = false; ///< A file that was to be created exists; `error` says so too.
        [[nodiscard]] bool ok() const { return error.isEmpty(); }
    };
    /// Writes everything into the sink; returns false when the sink refused or the content cannot be made.
    using Producer = std::function<bool(ByteSink&)>;

    virtual ~FileStore() = default;

    /// None when the file is missing or cannot be looked at.
    [[nodiscard]] virtual std::optional<FileStamp> stamp(const QString& path) const = 0;

    struct ReadResult {
        QByteArray bytes;
        std::optional<FileStamp> stamp; ///< Of the very file that was read; none when it is missing.
        QString error;                  ///< Empty when the file was read or is missing.
    };
    /// Reads the whole file into memory.
    [[nodiscard]] virtual ReadResult read(const QString& path) const = 0;

    /// What follows the prefix in the name of a temporary file: so many hexadecimal digits, in lower case.
    static constexpr qsizetype TemporaryNameDigits = 16;

    /// Replaces the file atomically and durably: a temporary file of the given mode in the same folder, its name
    /// beginning with temporaryPrefix; write, fsync, rename, fsync of the folder. On failure the old file stays
    /// as it was and the temporary file is gone. Where the path is a symbolic link, the file that it leads to is
    /// replaced, in its own folder; a link that leads nowhere is a failure.
    [[nodiscard]] virtual WriteResult replace(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                              const Producer& producer) = 0;
    /// The same for bytes in memory.
    [[nodiscard]] WriteResult replace(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                      const QByteArray& bytes);
    /// As replace, for a file that must not be there yet: an existing one is left as it is, and `alreadyThere` set.
    [[nodiscard]] virtual WriteResult create(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                             const QByteArray& bytes) = 0;
};

/// The real file system.
class DiskFileStore final : public FileStore {
public:
    using FileStore::replace;
    [[nodiscard]] std::optional<FileStamp> stamp(const QString& path) const override;
    [[nodiscard]] ReadResult read(const QString& path) const override;
    [[nodiscard]] WriteResult replace(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                      const Producer& producer) override;
    [[nodiscard]] WriteResult create(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                     const QByteArray& bytes) override;
};

} // namespace quarry
