#include "updater/ImageWriter.h"

#include <QFile>

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>
#include <vector>

namespace quarry {

namespace {

namespace fs = std::filesystem;

struct FreeWriter {
    void operator()(archive* writer) const { archive_write_free(writer); }
};
struct FreeEntry {
    void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};
using Writer = std::unique_ptr<archive, FreeWriter>;
using Entry = std::unique_ptr<archive_entry, FreeEntry>;

bool writeContent(archive* writer, const fs::path& place)
{
    std::ifstream file(place, std::ios::binary);
    std::array<char, 65536> buffer{};
    while (file.read(buffer.data(), buffer.size()) || file.gcount() > 0) {
        if (archive_write_data(writer, buffer.data(), static_cast<std::size_t>(file.gcount())) != file.gcount())
            return false;
    }
    return file.eof();
}

/// False for what no bundle holds, and on a fault.
bool describe(archive_entry* entry, const fs::path& place, std::error_code& code)
{
    const fs::file_status status = fs::symlink_status(place, code);
    const auto mode = static_cast<unsigned>(status.permissions()) & 0777U;
    archive_entry_set_perm(entry, static_cast<__LA_MODE_T>(mode));
    switch (status.type()) {
    case fs::file_type::directory:
        archive_entry_set_filetype(entry, AE_IFDIR);
        return true;
    case fs::file_type::symlink:
        archive_entry_set_filetype(entry, AE_IFLNK);
        archive_entry_set_symlink(entry, fs::read_symlink(place, code).c_str());
        return !code;
    case fs::file_type::regular:
        archive_entry_set_filetype(entry, AE_IFREG);
        archive_entry_set_size(entry, static_cast<la_int64_t>(fs::file_size(place, code)));
        return !code;
    default:
        return false;
    }
}

bool writeEntry(archive* writer, const fs::path& place, const fs::path& name)
{
    const Entry entry(archive_entry_new());
    std::error_code code;
    if (!describe(entry.get(), place, code))
        return false;
    archive_entry_set_pathname(entry.get(), name.c_str());
    const auto written = fs::last_write_time(place, code);
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::file_clock::to_sys(written).time_since_epoch());
    archive_entry_set_mtime(entry.get(), static_cast<time_t>(code ? 0 : seconds.count()), 0);
    return archive_write_header(writer, entry.get()) == ARCHIVE_OK &&
           (archive_entry_filetype(entry.get()) != AE_IFREG || writeContent(writer, place));
}

std::vector<fs::path> placesIn(const fs::path& folder, std::error_code& code)
{
    std::vector<fs::path> places{folder};
    fs::recursive_directory_iterator entries(folder, code);
    for (const fs::recursive_directory_iterator end; !code && entries != end; entries.increment(code))
        places.push_back(entries->path());
    std::sort(places.begin(), places.end());
    return places;
}

QString write(archive* writer, const fs::path& folder)
{
    std::error_code code;
    for (const fs::path& place : placesIn(folder, code)) {
        if (!writeEntry(writer, place, place.lexically_relative(folder.parent_path()))) {
            const char* const reason = archive_error_string(writer);
            return QStringLiteral("%1 cannot be put into the image: %2")
                .arg(QString::fromStdString(place.string()),
                     reason ? QString::fromUtf8(reason) : QStringLiteral("it cannot be read"));
        }
    }
    if (code)
        return QStringLiteral("%1: %2").arg(QString::fromStdString(folder.string()),
                                            QString::fromStdString(code.message()));
    return archive_write_close(writer) == ARCHIVE_OK ? QString() : QString::fromUtf8(archive_error_string(writer));
}

} // namespace

QString writeImage(const QString& folder, const QString& image)
{
    const Writer writer(archive_write_new());
    const QString unfinished = image + QStringLiteral(".unfinished");
    archive_write_set_format_iso9660(writer.get());
    // Long names are kept by the other extension; this one cannot hold all of them.
    archive_write_set_options(writer.get(), "volume-id=QuarrySpotter,!joliet");
    if (archive_write_open_filename(writer.get(), QFile::encodeName(unfinished).constData()) != ARCHIVE_OK)
        return QString::fromUtf8(archive_error_string(writer.get()));
    const fs::path place = fs::path(QFile::encodeName(folder).toStdString()).lexically_normal();
    QString fault = write(writer.get(), place.has_filename() ? place : place.parent_path());
    if (fault.isEmpty() &&
        std::rename(QFile::encodeName(unfinished).constData(), QFile::encodeName(image).constData()) != 0)
        fault = QStringLiteral("%1 cannot be written").arg(image);
    QFile::remove(unfinished);
    return fault;
}

} // namespace quarry
