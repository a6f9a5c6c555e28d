#include "updater/ImageUnpacker.h"

#include <QFile>

#include <archive.h>
#include <archive_entry.h>

#include <array>
#include <fstream>
#include <memory>
#include <optional>
#include <system_error>
#include <vector>

namespace quarry {

namespace {

namespace fs = std::filesystem;

struct FreeArchive {
    void operator()(archive* reader) const { archive_read_free(reader); }
};
using Reader = std::unique_ptr<archive, FreeArchive>;

QString textOf(const std::error_code& code)
{
    return QString::fromStdString(code.message());
}

/// Only formats that bring their own bytes (one of the library's names files of the machine), and only filters that run
/// within the library.
Reader openImage(const QString& image)
{
    Reader reader(archive_read_new());
    archive* const handle = reader.get();
    archive_read_support_format_iso9660(handle);
    archive_read_support_format_tar(handle);
    archive_read_support_format_cpio(handle);
    archive_read_support_format_zip(handle);
    archive_read_support_format_7zip(handle);
    archive_read_support_filter_gzip(handle);
    archive_read_support_filter_bzip2(handle);
    archive_read_support_filter_xz(handle);
    archive_read_support_filter_zstd(handle);
    constexpr std::size_t blockSize = std::size_t{64} * 1024;
    if (archive_read_open_filename(handle, QFile::encodeName(image).constData(), blockSize) != ARCHIVE_OK)
        return nullptr;
    return reader;
}

/// The path's components; none for one that is not plain. A "." says nothing and is left out.
std::optional<QList<QByteArray>> plainComponents(const QByteArray& path)
{
    if (path.isEmpty() || path.startsWith('/'))
        return std::nullopt;
    QList<QByteArray> components;
    for (const QByteArray& component : path.split('/')) {
        if (component == "..")
            return std::nullopt;
        if (!component.isEmpty() && component != ".")
            components.append(component);
    }
    return components;
}

/// Unpacks one image. Every folder in it is one that this object made, never a link, so paths lead where they say.
class Unpacker final {
public:
    Unpacker(archive* reader, fs::path root, const ImageLimits& limits)
        : _reader(reader), _root(std::move(root)), _limits(limits)
    {
    }

    QString run()
    {
        archive_entry* entry = nullptr;
        for (;;) {
            const int state = archive_read_next_header(_reader, &entry);
            if (state == ARCHIVE_EOF)
                return _entries == 0 ? QStringLiteral("it is empty, or no disk image") : lockFolders();
            if (state != ARCHIVE_OK && state != ARCHIVE_WARN)
                return QString::fromUtf8(archive_error_string(_reader));
            if (QString fault = take(entry); !fault.isEmpty())
                return fault;
        }
    }

private:
    QString take(archive_entry* entry)
    {
        const char* const name = archive_entry_pathname(entry);
        const QByteArray path(name);
        if (++_entries > _limits.entries)
            return QStringLiteral("it has too many entries");
        const auto components = plainComponents(path);
        if (!components || path.size() > _limits.pathLength)
            return fault("has a path that leads outside", path);
        if (components->isEmpty())
            return archive_entry_filetype(entry) == AE_IFDIR ? QString() : fault("is no folder", path);
        fs::path place;
        if (QString wrong = makeParents(*components, place); !wrong.isEmpty())
            return wrong;
        return make(entry, place, path, components->size() - 1);
    }

    QString make(archive_entry* entry, const fs::path& place, const QByteArray& path, qsizetype depth)
    {
        const char* const hardLink = archive_entry_hardlink(entry);
        const auto type = archive_entry_filetype(entry);
        std::error_code code;
        const fs::file_type there = fs::symlink_status(place, code).type();
        if (!hardLink && type == AE_IFDIR)
            return there == fs::file_type::directory ? QString() : makeFolder(place, path);
        if (there != fs::file_type::not_found)
            return fault("is there twice", path);
        if (hardLink)
            return makeHardLink(hardLink, place, path);
        if (type == AE_IFREG)
            return makeFile(entry, place, path);
        if (type != AE_IFLNK)
            return fault("is neither file, folder nor link", path);
        const QByteArray target(archive_entry_symlink(entry));
        if (!isContainedLink(target, depth))
            return fault("is a link that leads outside", path);
        fs::create_symlink(target.toStdString(), place, code);
        return code ? fault("cannot be made", path) : QString();
    }

    /// The folders above an entry, made where the image does not name them first.
    QString makeParents(const QList<QByteArray>& components, fs::path& place)
    {
        place = _root;
        for (qsizetype i = 0; i + 1 < components.size(); ++i) {
            place /= components[i].toStdString();
            std::error_code code;
            const fs::file_type there = fs::symlink_status(place, code).type();
            if (there == fs::file_type::directory)
                continue;
            if (QString wrong = makeFolder(place, components[i]); !wrong.isEmpty())
                return wrong;
        }
        place /= components.back().toStdString();
        return {};
    }

    QString makeFolder(const fs::path& place, const QByteArray& path)
    {
        std::error_code code;
        if (++_folderCount > _limits.entries || !fs::create_directory(place, code))
            return fault("cannot be made", path);
        _folders.push_back(place);
        return {};
    }

    QString makeHardLink(const QByteArray& target, const fs::path& place, const QByteArray& path)
    {
        const auto components = plainComponents(target);
        fs::path earlier = _root;
        for (const QByteArray& component : components.value_or(QList<QByteArray>())) {
            std::error_code code;
            if (fs::is_symlink(fs::symlink_status(earlier, code)))
                return fault("is a link that leads outside", path);
            earlier /= component.toStdString();
        }
        std::error_code code;
        if (!components || !fs::is_regular_file(fs::symlink_status(earlier, code)))
            return fault("is a link to no file of the image", path);
        fs::create_hard_link(earlier, place, code);
        return code ? fault("cannot be made", path) : QString();
    }

    QString makeFile(archive_entry* entry, const fs::path& place, const QByteArray& path)
    {
        std::int64_t missing = archive_entry_size_is_set(entry) ? archive_entry_size(entry) : 0;
        if (missing > _limits.bytes - _bytes)
            return QStringLiteral("its files are too large");
        std::ofstream file(place, std::ios::binary | std::ios::trunc);
        std::array<char, 65536> buffer{};
        la_ssize_t count = 0;
        while ((count = archive_read_data(_reader, buffer.data(), buffer.size())) > 0) {
            _bytes += count;
            missing -= count;
            if (_bytes > _limits.bytes)
                return QStringLiteral("its files are too large");
            file.write(buffer.data(), count);
        }
        if (count < 0)
            return QString::fromUtf8(archive_error_string(_reader));
        if (archive_entry_size_is_set(entry) && missing != 0)
            return fault("is not as long as it says", path);
        file.close();
        const bool isProgram = (archive_entry_perm(entry) & 0111) != 0;
        std::error_code code;
        fs::permissions(place, isProgram ? fs::perms(0555) : fs::perms(0444), code);
        return file.fail() || code ? fault("cannot be written", path) : QString();
    }

    QString lockFolders()
    {
        std::error_code code;
        for (const fs::path& folder : _folders) {
            fs::permissions(folder, fs::perms(0555), code);
            if (code)
                return textOf(code);
        }
        return {};
    }

    static QString fault(const char* what, const QByteArray& path)
    {
        return QStringLiteral("\"%1\" %2").arg(QFile::decodeName(path), QLatin1String(what));
    }

    archive* _reader;
    fs::path _root;
    ImageLimits _limits;
    std::int64_t _entries = 0;
    std::int64_t _folderCount = 0;
    std::int64_t _bytes = 0;
    std::vector<fs::path> _folders;
};

} // namespace

bool isContainedLink(const QByteArray& target, qsizetype depth)
{
    if (target.isEmpty() || target.startsWith('/') || target.contains('\0'))
        return false;
    bool below = false;
    for (const QByteArray& component : target.split('/')) {
        if (component.isEmpty() || component == ".")
            continue;
        // Behind a name, ".." leads up from wherever that name leads to, and that may be a link itself.
        if (component == ".." && (below || --depth < 0))
            return false;
        below = below || component != "..";
    }
    return true;
}

QString unpackImage(const QString& image, const fs::path& folder, const ImageLimits& limits)
{
    const Reader reader = openImage(image);
    if (!reader)
        return QStringLiteral("it cannot be read, or is no disk image");
    return Unpacker(reader.get(), folder, limits).run();
}

} // namespace quarry
