#include "exchange/ExportFile.h"

#include <QFileInfo>

namespace quarry {

namespace {

/// Where a file is written, and who may read it.
struct Target {
    QString path;
    unsigned mode = 0;
    QString error;
};

/// The permission bits of a file that is there.
unsigned modeOf(const QFileInfo& file)
{
    const unsigned bits = file.permissions().toInt();
    return ((bits >> 12) & 7U) << 6 | ((bits >> 4) & 7U) << 3 | (bits & 7U);
}

/// A name for something that is open already. Behind it may be a file, but whoever opened that does not expect another
/// one in its place.
bool isOpenFile(const QString& path)
{
    return path.startsWith(QLatin1String("/proc/")) || path.startsWith(QLatin1String("/dev/fd/")) ||
           (path.startsWith(QLatin1String("/dev/")) && QFileInfo(path).isSymLink());
}

/// Queries tell much about a person: a new file is theirs alone, save a feed, which is made to be fetched.
Target targetOf(const QString& name, ExportFormat format)
{
    const QFileInfo file(name);
    if (!file.exists() && !file.isSymLink())
        return {file.absoluteFilePath(), format == ExportFormat::Atom ? 0644U : 0600U, {}};
    if (!file.isFile() || isOpenFile(file.absoluteFilePath()))
        return {{}, 0, QStringLiteral("cannot write %1: it is no regular file").arg(name)};
    return {file.canonicalFilePath(), modeOf(file), {}}; // What a link leads to is replaced, not the link.
}

/// Whether the file would lie among the product's own, where it could take the place of one.
bool isOurs(const HomeFolder& home, const QString& path)
{
    const QString ours = QFileInfo(home.supportFolder()).canonicalFilePath();
    const QString folder = QFileInfo(QFileInfo(path).path()).canonicalFilePath();
    return !ours.isEmpty() && (folder == ours || folder.startsWith(ours + u'/'));
}

/// Refuses everything once nobody waits for it any more.
class CancellableSink final : public ByteSink {
public:
    CancellableSink(ByteSink& sink, const std::atomic<bool>* cancelled) : _sink(sink), _cancelled(cancelled) {}
    [[nodiscard]] bool append(const char* data, std::size_t size) override
    {
        return !(_cancelled && *_cancelled) && _sink.append(data, size);
    }

private:
    ByteSink& _sink;
    const std::atomic<bool>* _cancelled;
};

} // namespace

ExportFile exportToFile(const QueryCorePtr& node, ExportFormat format, ExportedResults which, const QString& name,
                        const HomeFolder& home, FileStore& files, const std::atomic<bool>* cancelled)
{
    const Target target = targetOf(name, format);
    if (!target.error.isEmpty())
        return {name, target.error};
    if (isOurs(home, target.path))
        return {target.path,
                QStringLiteral("cannot write %1: that folder holds the database; name another").arg(target.path)};
    const FileStore::WriteResult written =
        files.replace(target.path, QStringLiteral(".quarry-export-"), target.mode, [&](ByteSink& sink) {
            CancellableSink guarded(sink, cancelled);
            return exportNode(node, format, which, guarded);
        });
    return {target.path, written.error};
}

} // namespace quarry
