#include "gateway/FolderReader.h"

#include <map>

namespace quarry {

namespace {

/// Without a complete watch the whole folder is looked at again, but no more often than this.
constexpr std::chrono::seconds betweenFullLooks(1);

QByteArray joined(const QByteArray& folder, const QByteArray& name)
{
    return folder.isEmpty() ? name : folder + '/' + name;
}

/// Names that begin with a dot are not meant to be seen, at any level of a path.
bool isHidden(const QByteArray& path)
{
    return path.startsWith('.') || path.contains("/.");
}

/// File systems date a change only to some milliseconds: a file that was written just now may be written once more
/// without its stamp telling. Such a stamp is made unlike any file's, which never have the inode 0, so that the next
/// look reads the file again.
FileStamp lastingStamp(FileStamp stamp)
{
    constexpr std::chrono::nanoseconds coarsestClock = std::chrono::seconds(2);
    const std::chrono::nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
    if (now.count() - stamp.modifiedNanoseconds < coarsestClock.count())
        stamp.inode = 0;
    return stamp;
}

/// Files that may be documents. A compressed file beside the plain one of the same name is a copy of it: both would
/// go by one address.
std::vector<ContainedFolder::Entry> candidates(const std::vector<ContainedFolder::Entry>& entries)
{
    std::set<QByteArray> plain;
    for (const ContainedFolder::Entry& entry : entries) {
        if (!entry.isFolder && !entry.name.endsWith(".gz"))
            plain.insert(entry.name);
    }
    std::vector<ContainedFolder::Entry> result;
    for (const ContainedFolder::Entry& entry : entries) {
        const bool isCopy = entry.name.endsWith(".gz") && plain.count(entry.name.chopped(3)) != 0;
        if (!entry.isFolder && !isCopy && !isHidden(entry.name) && Document::isCandidate(entry.name))
            result.push_back(entry);
    }
    return result;
}

} // namespace

FolderReader::FolderReader(ContainedFolder folder, const QString& indexFile)
    : _folder(std::move(folder)), _index(indexFile, _folder.path()), _watch(_folder.path())
{
}

void FolderReader::readAll(const Progress& progress)
{
    _progress = progress;
    SqliteTransaction transaction = _index.begin();
    readTreeAgain(QByteArray());
    transaction.commit();
    _isBehind = false;
    _progress = nullptr;
    _lastFullLook = std::chrono::steady_clock::now();
}

void FolderReader::readChanges()
{
    FolderWatch::Changes changes = _watch.take();
    const bool isDue = !_watch.isComplete() && std::chrono::steady_clock::now() - _lastFullLook >= betweenFullLooks;
    changes.everything = changes.everything || isDue || _isBehind;
    if (changes.isEmpty())
        return;
    _isBehind = true;
    if (changes.everything)
        return readAll(nullptr);
    SqliteTransaction transaction = _index.begin();
    for (const QByteArray& folder : changes.folders) {
        const auto entries = _folder.list(folder);
        readFolder(folder, entries.value_or(std::vector<ContainedFolder::Entry>()));
    }
    for (const QByteArray& folder : changes.trees)
        readTreeAgain(folder);
    transaction.commit();
    _isBehind = false;
}

std::optional<Document> FolderReader::document(const QByteArray& path) const
{
    if (isHidden(path))
        return std::nullopt;
    for (const QByteArray& name : {path, path + ".gz"}) {
        const auto content = _folder.read(name, Document::pageLimit + 1);
        if (content)
            return Document::fromFile(name, content->bytes, Document::pageLimit);
    }
    return std::nullopt;
}

void FolderReader::readTreeAgain(const QByteArray& folder)
{
    std::set<QByteArray> seen;
    readTree(folder, seen);
    for (const QByteArray& known : _index.foldersBelow(folder)) {
        if (seen.count(known) == 0)
            _index.removeFolder(known);
    }
}

void FolderReader::readTree(const QByteArray& folder, std::set<QByteArray>& seen)
{
    // Beyond what the system takes as a path there is nothing a person put there.
    constexpr qsizetype longestPath = 4000;
    if (isHidden(folder) || folder.size() > longestPath)
        return;
    // Watched before it is listed: what comes in between is then seen twice, and not missed.
    _watch.add(folder);
    const auto entries = _folder.list(folder);
    if (!entries)
        return;
    seen.insert(folder);
    readFolder(folder, *entries);
    for (const ContainedFolder::Entry& entry : *entries) {
        if (entry.isFolder)
            readTree(joined(folder, entry.name), seen);
    }
}

void FolderReader::readFolder(const QByteArray& folder, const std::vector<ContainedFolder::Entry>& entries)
{
    const std::vector<DocumentIndex::File> files = _index.filesIn(folder);
    std::map<QByteArray, DocumentIndex::File> known;
    for (const DocumentIndex::File& file : files)
        known.emplace(file.name, file);
    for (const ContainedFolder::Entry& entry : candidates(entries)) {
        const auto old = known.find(entry.name);
        if (old == known.end()) {
            readFile(folder, entry);
            continue;
        }
        if (!(old->second.stamp == entry.stamp)) {
            _index.remove(old->second.id);
            readFile(folder, entry);
        }
        known.erase(old);
    }
    for (const auto& [name, file] : known)
        _index.remove(file.id);
}

void FolderReader::readFile(const QByteArray& folder, const ContainedFolder::Entry& entry)
{
    if (_progress && !_progress(_filesRead))
        throw GivenUp();
    ++_filesRead;
    const QByteArray path = joined(folder, entry.name);
    const auto content = _folder.read(path, Document::indexLimit);
    // One that cannot be read now is not remembered, so that it is tried again.
    if (!content)
        return;
    const auto document = Document::fromFile(path, content->bytes, Document::indexLimit);
    std::optional<DocumentIndex::Text> text;
    if (document)
        text = {document->title, document->plainText()};
    _index.add(folder, entry.name, lastingStamp(content->stamp), text);
}

} // namespace quarry
