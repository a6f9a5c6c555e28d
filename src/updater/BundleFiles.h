#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace quarry {

/// The few things an install does with bundles on disk, behind an interface so that tests can make them fail.
class BundleFiles {
public:
    virtual ~BundleFiles() = default;

    /// Something is at that path; a link that leads nowhere counts.
    [[nodiscard]] virtual bool exists(const QString& path) const = 0;
    /// Bytes of the files below a folder.
    [[nodiscard]] virtual std::int64_t size(const QString& folder) const = 0;
    /// Bytes that this user may still write where the folder lies.
    [[nodiscard]] virtual std::int64_t freeSpace(const QString& folder) const = 0;
    /// Whether entries of that folder may be made and removed.
    [[nodiscard]] virtual bool isWritable(const QString& folder) const = 0;

    /// A new folder inside that one, for this user only; none when it cannot be made.
    [[nodiscard]] virtual std::optional<QString> makeStagingFolder(const QString& parent) = 0;
    /// Copies a bundle to a path where nothing is, its links as links, everything with the owner's write permission.
    /// Returns one line for a person on failure, else an empty text; then the copy is on the disk for good.
    [[nodiscard]] virtual QString copy(const QString& from, const QString& to) = 0;
    /// Moves within one file system, to a path where nothing is.
    [[nodiscard]] virtual bool rename(const QString& from, const QString& to) = 0;
    /// Moves to the Trash. Answers where it lies there; none when it could not be moved.
    [[nodiscard]] virtual std::optional<QString> moveToTrash(const QString& path) = 0;
    /// Takes it out of the Trash again.
    [[nodiscard]] virtual bool putBack(const QString& trashed, const QString& path) = 0;
    /// A file, a link, or a folder with everything in it; that there is nothing is no error.
    virtual void remove(const QString& path) = 0;
};

/// The real file system.
class DiskBundleFiles final : public BundleFiles {
public:
    [[nodiscard]] bool exists(const QString& path) const override;
    [[nodiscard]] std::int64_t size(const QString& folder) const override;
    [[nodiscard]] std::int64_t freeSpace(const QString& folder) const override;
    [[nodiscard]] bool isWritable(const QString& folder) const override;
    [[nodiscard]] std::optional<QString> makeStagingFolder(const QString& parent) override;
    [[nodiscard]] QString copy(const QString& from, const QString& to) override;
    [[nodiscard]] bool rename(const QString& from, const QString& to) override;
    [[nodiscard]] std::optional<QString> moveToTrash(const QString& path) override;
    [[nodiscard]] bool putBack(const QString& trashed, const QString& path) override;
    void remove(const QString& path) override;
};

} // namespace quarry
