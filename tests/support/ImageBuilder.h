#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <vector>

namespace quarry::test {

/// One entry of an image, hostile or not.
struct ImageEntry {
    QByteArray path;
    unsigned type = AE_IFREG;
    QByteArray content{}; ///< Of a file.
    QByteArray target{};  ///< Of a symbolic link, or of a hard link when `type` is AE_IFREG.
    qint64 hole = 0;      ///< Bytes that a sparse file claims to hold.
};

/// A tar archive with exactly these entries, in this order; nothing is checked.
inline bool buildImage(const QString& path, const std::vector<ImageEntry>& entries)
{
    const std::unique_ptr<archive, int (*)(archive*)> writer(archive_write_new(), archive_write_free);
    archive_write_set_format_pax(writer.get());
    if (archive_write_open_filename(writer.get(), QFile::encodeName(path).constData()) != ARCHIVE_OK)
        return false;
    for (const ImageEntry& made : entries) {
        const std::unique_ptr<archive_entry, void (*)(archive_entry*)> entry(archive_entry_new(), archive_entry_free);
        archive_entry_set_pathname(entry.get(), made.path.constData());
        archive_entry_set_filetype(entry.get(), made.type);
        archive_entry_set_perm(entry.get(), 0755);
        archive_entry_set_size(entry.get(), made.hole > 0 ? made.hole : made.content.size());
        if (made.hole > 0)
            archive_entry_sparse_add_entry(entry.get(), made.hole, 0);
        if (made.type == AE_IFLNK)
            archive_entry_set_symlink(entry.get(), made.target.constData());
        else if (!made.target.isEmpty())
            archive_entry_set_hardlink(entry.get(), made.target.constData());
        if (archive_write_header(writer.get(), entry.get()) < ARCHIVE_WARN ||
            archive_write_data(writer.get(), made.content.constData(), static_cast<std::size_t>(made.content.size())) <
                0)
            return false;
    }
    return archive_write_close(writer.get()) == ARCHIVE_OK;
}

} // namespace quarry::test
