#pragma once

#include "gateway/Document.h"
#include "gateway/DocumentIndex.h"
#include "platform/ContainedFolder.h"
#include "platform/FolderWatch.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <vector>

namespace quarry {

/// Keeps an index the same as a folder; hidden files and folders apart, which are no documents. Throws SqliteError. One
/// thread at a time, but document() any.
class FolderReader final {
public:
    /// Files looked at so far; false gives up. Asked for every file that has to be read.
    using Progress = std::function<bool(std::int64_t files)>;
    /// Thrown when the progress said so.
    struct GivenUp {};

    FolderReader(ContainedFolder folder, const QString& indexFile);

    /// Looks at the whole folder, and watches it from now on.
    void readAll(const Progress& progress);
    /// Brings in whatever changed since the last look.
    void readChanges();

    [[nodiscard]] DocumentIndex& index() { return _index; }
    /// The document at that path, or the compressed one whose name goes on with ".gz".
    [[nodiscard]] std::optional<Document> document(const QByteArray& path) const;

private:
    void readTree(const QByteArray& folder, std::set<QByteArray>& seen);
    void readTreeAgain(const QByteArray& folder);
    void readFolder(const QByteArray& folder, const std::vector<ContainedFolder::Entry>& entries);
    void readFile(const QByteArray& folder, const ContainedFolder::Entry& entry);

    ContainedFolder _folder;
    DocumentIndex _index;
    FolderWatch _watch;
    Progress _progress;
    std::int64_t _filesRead = 0;
    bool _isBehind = false; ///< Changes were taken from the watch and not brought in: the index failed.
    std::chrono::steady_clock::time_point _lastFullLook;
};

} // namespace quarry
