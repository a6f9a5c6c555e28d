#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <filesystem>

namespace quarry {

/// What an image may hold at most.
struct ImageLimits {
    std::int64_t entries = 100000;
    std::int64_t bytes = std::int64_t{4} << 30; ///< Of all files together, holes counted.
    std::int64_t pathLength = 1024;             ///< Of one entry's path, in bytes.
};

/// Unpacks a disk image (ISO 9660, or an archive: tar, cpio, zip, 7-Zip, compressed or not) into an empty folder that
/// nobody else can write to. Nothing of the image lands outside it: an image with an absolute path or one with "..",
/// with a symbolic link that leads out, a hard link to anything but an earlier file of the image, a device, pipe or
/// socket, or two files of one name is refused as a whole. What is unpacked may not be written to.
///
/// Returns one line for a person on failure, an empty text otherwise. What was unpacked until then stays.
[[nodiscard]] QString unpackImage(const QString& image, const std::filesystem::path& folder,
                                  const ImageLimits& limits = {});

/// Whether a symbolic link that lies that many folders deep leads to a place inside: a relative target whose ".." come
/// first and are not more than those folders.
[[nodiscard]] bool isContainedLink(const QByteArray& target, qsizetype depth);

} // namespace quarry
